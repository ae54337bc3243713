#version 150 compatibility
// What floats above an item block, in polished metal or enamel of its colour.

in float signFace;

uniform vec4 a_Color;

//HOTSPOT_PRE_MAIN

const float gloss = 0.6;
const float shininess = 36.0;
const float rimGlow = 0.25;  // lifts the outline off the wood behind it
const vec3 signShade = vec3(0.30, 0.15, 0.2);  // of its item's colour: a sign is small, and the wood is pale

void main()
{
    //HOTSPOT_START_MAIN
    vec3 normal = phongNormal();
    float rim = 1.0 - abs(dot(normal, normalize(eyePosition)));
    vec3 surface = a_Color.rgb * mix(vec3(1.0), signShade, signFace);
    vec3 color = phong(surface, normal, gloss * (1.0 - signFace), shininess);
    gl_FragColor = vec4(color + rimGlow * rim * rim * surface, a_Color.a);
}
