#version 150 compatibility
// The cap of a button: lacquer whose colour eases to grey while it cannot be pressed.

in vec3 capPosition;

uniform vec4 a_Color;
uniform vec4 a_ColorAnimationTarget;
uniform float a_ColorAnimationStart;  // seconds of the simulation's clock
uniform float a_ColorAnimationEnd;

//HOTSPOT_PRE_MAIN

const float ringInner = 0.36;  // units from the middle: a turned groove that shows the cap's roundness
const float ringOuter = 0.41;
const float ringShade = 0.62;
const float gloss = 0.55;
const float shininess = 60.0;

void main()
{
    //HOTSPOT_START_MAIN
    vec4 color = mix(a_Color, a_ColorAnimationTarget,
                     easeInOut(easeProgress(a_ColorAnimationStart, a_ColorAnimationEnd)));
    float radius = length(capPosition.xy);
    float groove = smoothstep(ringInner - 0.01, ringInner + 0.01, radius)
                   * (1.0 - smoothstep(ringOuter - 0.01, ringOuter + 0.01, radius));
    // The alpha eases along with the colour, and caps are drawn without blending: it is left out here.
    vec3 lacquer = color.rgb * mix(1.0, ringShade, groove);
    gl_FragColor = vec4(phong(lacquer, phongNormal(), gloss, shininess), 1.0);
}
