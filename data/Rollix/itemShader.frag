#version 150 compatibility
// What floats above an item block, in polished metal or enamel of its colour.

uniform vec4 a_Color;

//HOTSPOT_PRE_MAIN

const float gloss = 0.6;
const float shininess = 36.0;
const float rimGlow = 0.25;  // lifts the outline off the wood behind it

void main()
{
    //HOTSPOT_START_MAIN
    vec3 normal = phongNormal();
    float rim = 1.0 - abs(dot(normal, normalize(eyePosition)));
    vec3 color = phong(a_Color.rgb, normal, gloss, shininess);
    gl_FragColor = vec4(color + rimGlow * rim * rim * a_Color.rgb, a_Color.a);
}
