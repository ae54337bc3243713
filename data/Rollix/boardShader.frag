#version 150 compatibility
// The board and every block on it: polished wood, stained by height.

//HOTSPOT_PRE_MAIN

void main()
{
    //HOTSPOT_START_MAIN
    vec3 normal = bevelled(phongNormal());
    vec3 toLight = normalize(eyeToLight);
    vec2 shade = shadeOfBoard() * shadeOfBall(eyePosition, normal, toLight);
    float grain = woodGrain();
    float gloss = woodGloss * (1.0 - 0.6 * grain);
    gl_FragColor = vec4(shaded(woodColor(grain), normal, toLight, shade, gloss, woodShininess), 1.0);
}
