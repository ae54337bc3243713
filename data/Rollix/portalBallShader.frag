#version 150 compatibility
// The ball: a polished marble. Its veins and its paler band turn with it, for a ball of one colour does not
// show that it rolls; what it mirrors of sky, board and lamp stays.

in vec4 ballColor;
in vec3 ballPosition;
in float shown;

//HOTSPOT_PRE_MAIN

const float ballRadius = 0.3;
const float bandHalf = 0.13;      // half the band's width, of the radius
const float bandEdge = 0.05;
const vec3 paleStone = vec3(1.0, 0.80, 0.66);
const vec3 deepStone = vec3(0.42, 0.02, 0.03);
const float gloss = 0.9;
const float shininess = 140.0;

// What is mirrored: a bright sky, darker overhead, and the wood of the board under the horizon.
const vec3 skyZenith = vec3(0.30, 0.34, 0.72);
const vec3 skyHorizon = vec3(0.86, 0.88, 1.0);
const vec3 boardBelow = vec3(0.42, 0.27, 0.14);
const float mirrorLeast = 0.07;   // of what is mirrored, seen straight on
const float mirrorMost = 0.75;    // and at the rim

// Lines through the stone, from sines that are bent by others.
float veins(vec3 place)
{
    float bend = sin(5.1 * place.x + 2.0 * sin(3.7 * place.y)) + sin(4.3 * place.z + 1.7);
    float vein = sin(3.4 * place.y + 2.6 * place.x - 1.9 * place.z + 1.8 * bend);
    return 1.0 - smoothstep(0.0, 0.34, abs(vein));
}

void main()
{
    //HOTSPOT_START_MAIN
    if (shown < 0.0)
        discard;
    vec3 place = ballPosition / ballRadius;
    vec3 normal = phongNormal();
    vec3 toEye = normalize(-eyePosition);
    vec3 up = osg_ViewMatrix[2].xyz;

    float band = 1.0 - smoothstep(bandHalf - bandEdge, bandHalf + bandEdge, abs(place.z));
    vec3 stone = mix(ballColor.rgb, deepStone, 0.55 * veins(place));
    stone = mix(stone, paleStone, 0.8 * band);

    vec3 mirrored = reflect(-toEye, normal);
    float height = dot(mirrored, up);
    vec3 around = height > 0.0 ? mix(skyHorizon, skyZenith, smoothstep(0.0, 0.7, height))
                               : mix(skyHorizon, boardBelow, smoothstep(0.0, 0.12, -height));
    float edge = 1.0 - max(dot(normal, toEye), 0.0);
    float share = mix(mirrorLeast, mirrorMost, edge * edge * edge);
    // Under its middle a ball stands in its own shade.
    float open = 0.45 + 0.55 * smoothstep(-1.0, 0.3, dot(normal, up));
    vec3 color = shaded(stone, normal, normalize(eyeToLight), vec2(1.0, open), gloss, shininess);
    gl_FragColor = vec4(mix(color, around * open, share), ballColor.a);
}
