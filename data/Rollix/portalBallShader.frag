#version 150 compatibility
// The ball: glossy, with a paler band round it, for a ball of one colour does not show that it rolls.

in vec4 ballColor;
in vec3 ballPosition;
in float shown;

//HOTSPOT_PRE_MAIN

const float ballRadius = 0.3;
const float bandHalf = 0.16;      // half the band's width, of the radius
const float bandEdge = 0.03;
const vec3 bandLight = vec3(1.0, 0.72, 0.55);
const float gloss = 0.8;
const float shininess = 80.0;

void main()
{
    //HOTSPOT_START_MAIN
    if (shown < 0.0)
        discard;
    float fromMiddle = abs(ballPosition.z) / ballRadius;
    float band = 1.0 - smoothstep(bandHalf - bandEdge, bandHalf + bandEdge, fromMiddle);
    vec3 color = mix(ballColor.rgb, bandLight, 0.55 * band);
    gl_FragColor = vec4(phong(color, phongNormal(), gloss, shininess), ballColor.a);
}
