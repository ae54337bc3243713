#version 150 compatibility
// A picture let into the top of a block: a ring of warning round a mine, the glow of a portal's mouth.

in vec2 inlayPlace;

uniform int a_InlayKind;  // 0 mine, 1 portal
uniform float osg_SimulationTime;

//HOTSPOT_PRE_MAIN

const int mineInlay = 0;
const float blur = 0.02;  // units, of every edge

const float ringInner = 0.25;  // units
const float ringOuter = 0.41;
const float ringParts = 8.0;   // red ones and as many black ones
const vec3 ringRed = vec3(0.85, 0.05, 0.03);
const vec3 ringBlack = vec3(0.05, 0.04, 0.04);
const float mineGloss = 0.15;
const float mineShininess = 60.0;

const vec3 portalDeep = vec3(0.02, 0.05, 0.45);
const vec3 portalGlow = vec3(0.25, 0.75, 1.0);
const float portalReach = 0.62;  // from the mouth's side inward, units
const float waves = 4.0;         // a unit
const float waveSpeed = 1.1;     // a second, into the block

float fillOf(float inside)
{
    return smoothstep(-blur, blur, inside);
}

vec4 mine()
{
    float radius = length(inlayPlace);
    float turn = atan(inlayPlace.y, inlayPlace.x) / 6.2831853;
    float part = abs(fract(turn * ringParts) - 0.5) - 0.25;  // below zero on the red parts
    vec3 color = mix(ringRed, ringBlack, fillOf(part * 6.2831853 / ringParts * radius));
    float ring = fillOf(radius - ringInner) * fillOf(ringOuter - radius);
    return vec4(phong(color, phongNormal(), mineGloss, mineShininess), ring);
}

vec4 portal()
{
    // A half disc round the middle of the mouth's side.
    vec2 fromMouth = inlayPlace - vec2(0.5, 0.0);
    float radius = length(fromMouth * vec2(1.0, 1.35));
    float wave = 0.5 + 0.5 * sin(6.2831853 * (waves * radius + waveSpeed * osg_SimulationTime));
    float near = 1.0 - radius / portalReach;
    vec3 color = mix(portalDeep, portalGlow, clamp(wave * near + 0.35 * near, 0.0, 1.0));
    float rim = fillOf(radius - portalReach + 0.07);
    return vec4(mix(color, portalGlow, rim), fillOf(portalReach - radius));
}

void main()
{
    //HOTSPOT_START_MAIN
    gl_FragColor = a_InlayKind == mineInlay ? mine() : portal();
}
