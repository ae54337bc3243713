// Polished wood. Its grain is painted once, in a picture of a cut through one log, and every point of the
// board has its place in it: so the grain runs on from block to block and round every edge. How it lies in
// light and shadow is worked out by the game cell by cell, in the shade map, and looked up here.

in vec3 boardPosition;
in vec3 stain;
in vec2 woodPlace;
in vec2 shadePlace;
in vec4 inCell;
in vec3 facing;
in vec4 toBall;
in float ballOver;
flat in vec4 openEdges;
flat in vec3 uphill;
flat in float upright;
flat in vec3 toLamp;
flat in vec3 halfway;

uniform sampler2D a_WoodGrain;  // how dark the grain is, 0 between rings to 1 in a ring's late wood
uniform sampler2D a_ShadeMap;   // a cell's depth of shadow, openness, height; what coins leave of the lamp

const vec3 grainContrast = vec3(0.46, 0.55, 0.62);  // late wood is redder

// The inlay of ramps: chevrons that point uphill.
const vec3 darkInlay = vec3(0.24, 0.11, 0.05);
const vec3 paleInlay = vec3(0.97, 0.86, 0.62);
const float inlayStrength = 0.8;
const float chevronStep = 0.34;    // units from one to the next
const float chevronSlant = 0.55;   // how far their arms fall back, units a unit
const float chevronWidth = 0.045;  // half of it, units
const float chevronReach = 0.33;   // of the arms to either side, units
const float inlayBlur = 0.02;
const float inlayHeight = 1.4;     // from where on it is the paler

const float bevelWidth = 0.06;  // units
const float bevelSlant = 0.75;  // how far the normal leans at the very edge
const float bevelShrink = 0.2;  // what that takes of its length

// The ranges of the shade map's bytes, in units.
const float lowestShadow = -0.5;
const float shadowRange = 3.0;
const float lowestSurface = -2.0;
const float surfaceRange = 6.0;
const float shadowBlur = 0.16;  // half the height over which a shadow's edge fades
const float footReach = 0.9;    // how far up a side the darkness of its foot is felt

const float ballRadius = 0.3;
const float ballBlur = 0.05;    // of the edge of its shadow, units at the ball, and more for each unit away
const float ballSpread = 0.16;

const float woodGloss = 0.27;
const float woodShininess = 60.0;

float woodGrain()
{
    return texture(a_WoodGrain, woodPlace).r;
}

// 1 as far from the middle as it reaches, 0 further off, and a soft edge.
float line(float away, float reach)
{
    return clamp(0.5 + (reach - away) / (2.0 * inlayBlur), 0.0, 1.0);
}

float chevrons()
{
    float along = dot(inCell.xy, uphill.xy);
    float aside = abs(uphill.x * inCell.y - uphill.y * inCell.x);
    float place = (along + chevronSlant * aside) / chevronStep;
    float away = abs(fract(place) - 0.5) * chevronStep;
    return uphill.z * step(abs(place), 1.0) * line(away, chevronWidth) * line(aside, chevronReach);
}

vec3 woodColor(float grain)
{
    vec3 color = mix(stain, inCell.w < inlayHeight ? darkInlay : paleInlay, inlayStrength * chevrons());
    return color * (1.0 - grainContrast * grain);
}

// The face's cosines, and what they are where its block ends in the open: there it leans outward.
vec3 bevelled()
{
    vec4 toEdge = vec4(0.5 - inCell.xy, 0.5 + inCell.xy);
    vec4 lean = openEdges * clamp(1.0 - toEdge / bevelWidth, 0.0, 1.0);
    float up = upright * clamp(1.0 - inCell.z / bevelWidth, 0.0, 1.0);
    vec3 outward = vec3(lean.xy - lean.zw, up);
    // Nearly what making the leaning normal of length 1 again would give, without a root.
    float shrink = 1.0 - bevelShrink * min(dot(outward, outward), 1.0);
    return min(shrink * (facing + bevelSlant * vec3(0.0, dot(outward, toLamp), dot(outward, halfway))), 1.0);
}

// What is left of the lamp and of the sky, by all that stands on the board and all that hovers over it.
vec2 shadeOfBoard()
{
    vec4 shade = texture(a_ShadeMap, shadePlace);
    // Shadows end above the foot of a side.
    float over = upright * max(inCell.w - (lowestSurface + surfaceRange * shade.b), 0.0);
    float depth = lowestShadow + shadowRange * shade.r - over;
    float lamp = shade.a * (1.0 - smoothstep(-shadowBlur, shadowBlur, depth));
    float open = mix(shade.g, 1.0, min(over / footReach, 1.0));
    return vec2(lamp, open);
}

// The same by the ball. Without roots, which are dear: the shadow's edge is soft in the square of the way
// to its middle.
vec2 shadeOfBall()
{
    float distanceSquared = dot(toBall.xyz, toBall.xyz);
    float asideSquared = distanceSquared - toBall.w * toBall.w;
    float blur = min(ballBlur + ballSpread * max(toBall.w, 0.0), ballRadius);
    // From (radius - blur)^2 to (radius + blur)^2.
    float inner = ballRadius - blur;
    float lamp = clamp((asideSquared - inner * inner) / (4.0 * ballRadius * blur), 0.0, 1.0);
    lamp = max(lamp * lamp * (3.0 - 2.0 * lamp), step(toBall.w, 0.0));
    // The part of the sky that a ball hides from a face that it stands over.
    float near = ballRadius / distanceSquared;
    float hidden = ballRadius * near * near * max(ballOver, 0.0);
    return vec2(lamp, 1.0 - min(hidden, 1.0));
}

// Of phong_frag.glsl, which stands further down.
vec3 lit(vec3 surface, float upward, float facing, float aligned, vec2 shade, float gloss, float shininess);

vec3 litWood(vec3 surface, float gloss)
{
    vec3 leaning = bevelled();
    return lit(surface, leaning.x, leaning.y, leaning.z, shadeOfBoard() * shadeOfBall(), gloss, woodShininess);
}
