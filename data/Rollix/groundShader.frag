#version 150 compatibility
// The ground: dark, with a grain of its own, in the board's shadow; at its edge it fades into the sky.

in vec3 groundColor;
in vec2 groundPlace;
in vec3 shadowPlace;

uniform sampler2D a_WoodGrain;   // stands for brushed slate here
uniform sampler2D a_BoardCover;  // how much of the sky the board hides, blurred, by its cells
uniform vec2 a_CoverSize;        // of that picture, in units

//HOTSPOT_PRE_MAIN

const vec3 skyColor = vec3(0.2, 0.2, 0.6);
const float halfGround = 15.0;    // units
const float fadeWidth = 2.5;      // of its edge, units
const float grainSize = 0.033;  // pictures a unit: one covers all
const float grainStrength = 0.45;
const float shadowStrength = 0.62;
const float lampShare = 1.25;     // what the ground shows of its colour in full light

void main()
{
    //HOTSPOT_START_MAIN
    float grain = texture(a_WoodGrain, groundPlace * grainSize + 0.5).r - 0.25;
    float cover = texture(a_BoardCover, shadowPlace.xy / (shadowPlace.z * a_CoverSize) + 0.5).r;
    vec3 color = groundColor * lampShare * (1.0 - grainStrength * grain) * (1.0 - shadowStrength * cover);
    vec2 toEdge = halfGround - abs(groundPlace);
    float inside = smoothstep(0.0, fadeWidth, min(toEdge.x, toEdge.y));
    gl_FragColor = vec4(mix(skyColor, color, inside), 1.0);
}
