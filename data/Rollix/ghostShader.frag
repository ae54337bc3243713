#version 150 compatibility
// A block that comes and goes: it crumbles away along its noise with a glowing edge, and where it has
// gone a faint outline of its cell stays, so that a player knows what can come back.

uniform bool a_Opaque;         // what the block is, or is becoming
uniform float a_OpaqueStart;   // seconds of the simulation's clock
uniform float a_OpaqueEnd;

//HOTSPOT_PRE_MAIN

const float crumbs = 5.5;        // holes a unit
const float edgeWidth = 0.14;    // of the fade, that glows
const vec3 edgeGlow = vec3(0.45, 0.95, 1.0);
const vec3 ghostTint = vec3(0.72, 0.97, 1.12);  // solid ghosts are bleached wood under blue lacquer
const float bleached = 0.85;
const vec3 outlineColor = vec3(0.55, 0.85, 1.0);
const float outlineWidth = 0.06;  // units
const float outlineAlpha = 0.34;
const float restAlpha = 0.10;

void main()
{
    //HOTSPOT_START_MAIN
    float pixelSize = length(fwidth(boardPosition));
    // Faces turned away would be mixed in or not by the order of drawing.
    if (!gl_FrontFacing)
        discard;

    float progress = easeInOut(easeProgress(a_OpaqueStart, a_OpaqueEnd));
    float solid = a_Opaque ? progress : 1.0 - progress;

    vec2 toBorder = 0.5 - abs(inCell.xy);
    // One of the two is zero all over an upright face; there the other draws the outline.
    float border = upright < 0.5 ? min(toBorder.x, toBorder.y) : max(toBorder.x, toBorder.y);
    float outline = 1.0 - smoothstep(0.4 * outlineWidth, max(outlineWidth, 1.5 * pixelSize), border);

    // Where the noise is above what is left of the block, the block is gone.
    float crumb = 0.0;
    if (solid > 0.0 && solid < 1.0)
        crumb = clamp(0.5 + 0.7 * classicNoise(boardPosition * crumbs), 0.0, 1.0);
    float left = solid * (1.0 + edgeWidth) - crumb;

    if (solid <= 0.0 || left < 0.0) {
        gl_FragColor = vec4(outlineColor, mix(restAlpha, outlineAlpha, outline));
        return;
    }
    float grain = woodGrain();
    vec3 wood = woodColor(grain);
    wood = mix(wood, vec3(max(wood.r, 0.5) * (1.0 - 0.3 * grain)), bleached) * ghostTint;
    vec3 color = litWood(wood, woodGloss);
    color += edgeGlow * 0.16 * outline;
    if (solid < 1.0)
        color = mix(edgeGlow, color, smoothstep(0.0, edgeWidth, left));
    gl_FragColor = vec4(color, 1.0);
}
