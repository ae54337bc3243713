#version 150 compatibility
// The cloth of a flag: one colour for a checkpoint, chequers for the goal.

in vec3 eyeNormal;
in vec3 eyeToLight;
in vec2 cloth;

uniform int a_FlagType;    // 1 checkpoint, 2 goal
uniform vec4 a_FlagColor;  // of a checkpoint; a goal has none

//HOTSPOT_PRE_MAIN

const int goalFlag = 2;
const float chequers = 3.0;  // along each edge: few, for they are looked at from far away
const float hem = 0.06;      // of the cloth's height, a checkpoint's light border
const vec3 blackCloth = vec3(0.02);
const vec3 whiteCloth = vec3(1.0);

vec3 clothColor()
{
    if (a_FlagType == goalFlag) {
        vec2 field = floor(clamp(cloth, 0.0, 0.999) * chequers);
        return mod(field.x + field.y, 2.0) < 0.5 ? blackCloth : whiteCloth;
    }
    vec2 toEdge = min(cloth, 1.0 - cloth);
    float border = 1.0 - smoothstep(hem, hem + 0.04, min(toEdge.x + hem, toEdge.y));
    return mix(a_FlagColor.rgb, whiteCloth, 0.75 * border);
}

void main()
{
    //HOTSPOT_START_MAIN
    // Thin cloth is lit from either side alike, and lets some light through.
    float facing = abs(dot(normalize(eyeNormal), normalize(eyeToLight)));
    gl_FragColor = vec4(clothColor() * (0.62 + 0.5 * facing), 1.0);
}
