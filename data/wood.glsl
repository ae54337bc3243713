// Polished wood. Its grain is painted once, in a picture of a cut through one log, and every point of the
// board has its place in it: so the grain runs on from block to block and round every edge. How it lies in
// light and shadow is worked out by the game cell by cell, in the shade map, and looked up here.

in vec3 boardPosition;
in vec3 boardPlace;
in vec3 boardNormal;
in vec2 woodPlace;
in vec2 shadePlace;
in vec3 inCell;
in vec3 toLamp;
in vec3 halfway;
in vec3 toBall;
flat in vec4 openEdges;
flat in vec3 uphill;
flat in float upright;

uniform sampler2D a_WoodGrain;  // how dark the grain is, 0 between rings to 1 in a ring's late wood
uniform sampler2D a_ShadeMap;   // a cell's depth of shadow, openness, height; what coins leave of the lamp
uniform vec4 a_Lacquer;         // a colour over the wood, and how much of it
uniform vec3 a_UpOnBoard;       // what is up in the world, board coordinates

// The stains: a floor is pale, and every half unit of height is a shade darker, so that steps are seen
// from straight above as well; upright faces are darker than any top beside them.
const vec3 paleWood = vec3(0.93, 0.72, 0.45);
const vec3 amberWood = vec3(0.74, 0.43, 0.19);
const vec3 darkWood = vec3(0.40, 0.19, 0.09);
const vec3 sideStain = vec3(0.80, 0.72, 0.68);
const float lowestTop = 0.5;   // height of the lowest blocks
const float highestTop = 2.0;  // and of the highest
const vec3 grainContrast = vec3(0.46, 0.55, 0.62);  // late wood is redder

// The inlay of ramps: chevrons that point uphill.
const vec3 darkInlay = vec3(0.24, 0.11, 0.05);
const vec3 paleInlay = vec3(0.97, 0.86, 0.62);
const float inlayStrength = 0.8;
const float chevronStep = 0.34;    // units from one to the next
const float chevronSlant = 0.55;   // how far their arms fall back, units a unit
const float chevronWidth = 0.045;  // half of it, units
const float chevronReach = 0.33;   // of the arms to either side, units
const float inlayBlur = 0.025;

const float bevelWidth = 0.06;  // units
const float bevelSlant = 0.75;  // how far the normal leans at the very edge

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

const float woodGloss = 0.34;
const float woodShininess = 60.0;

float woodGrain()
{
    return texture(a_WoodGrain, woodPlace).r;
}

float chevrons()
{
    float along = dot(inCell.xy, uphill.xy);
    float aside = abs(uphill.x * inCell.y - uphill.y * inCell.x);
    float place = (along + chevronSlant * aside) / chevronStep;
    float away = abs(fract(place) - 0.5) * chevronStep;
    return uphill.z * step(abs(place), 1.0)
           * (1.0 - smoothstep(chevronWidth - inlayBlur, chevronWidth + inlayBlur, away))
           * (1.0 - smoothstep(chevronReach - inlayBlur, chevronReach + inlayBlur, aside));
}

vec3 woodColor(float grain)
{
    float height = clamp((boardPosition.z - lowestTop) / (highestTop - lowestTop), 0.0, 1.0);
    vec3 stain = height < 0.5 ? mix(paleWood, amberWood, 2.0 * height)
                              : mix(amberWood, darkWood, 2.0 * height - 1.0);
    stain = mix(stain, height < 0.6 ? darkInlay : paleInlay, inlayStrength * chevrons());
    stain = mix(stain, a_Lacquer.rgb, a_Lacquer.a);
    return stain * mix(vec3(1.0), sideStain, upright) * (1.0 - grainContrast * grain);
}

// In board coordinates. A quad whose first edge has no length was given a normal of length zero by the cross
// product that made it; the face itself still knows how it lies.
vec3 faceNormal()
{
    vec3 face = cross(dFdx(boardPlace), dFdy(boardPlace));
    return dot(boardNormal, boardNormal) > 1.0e-8 ? boardNormal : face * inversesqrt(dot(face, face));
}

// That normal, leaning outward where its block ends in the open.
vec3 bevelled(vec3 normal)
{
    vec4 toEdge = vec4(0.5 - inCell.xy, 0.5 + inCell.xy);
    vec4 lean = openEdges * clamp(1.0 - toEdge / bevelWidth, 0.0, 1.0);
    float up = clamp(1.0 - inCell.z / bevelWidth, 0.0, 1.0);
    return normalize(normal + bevelSlant * vec3(lean.xy - lean.zw, up * upright));
}

// What is left of the lamp and of the sky, by all that stands on the board and all that hovers over it.
vec2 shadeOfBoard()
{
    vec4 shade = texture(a_ShadeMap, shadePlace);
    // Shadows end above the foot of a side.
    float over = upright * max(boardPosition.z - (lowestSurface + surfaceRange * shade.b), 0.0);
    float depth = lowestShadow + shadowRange * shade.r - over;
    float lamp = shade.a * (1.0 - smoothstep(-shadowBlur, shadowBlur, depth));
    float open = mix(shade.g, 1.0, min(over / footReach, 1.0));
    return vec2(lamp, open);
}

// The same by the ball. Without roots, which are dear: the shadow's edge is soft in the square of the way
// to its middle.
vec2 shadeOfBall(vec3 normal)
{
    float distanceSquared = dot(toBall, toBall);
    float along = dot(toBall, toLamp);
    float asideSquared = distanceSquared - along * along;
    float blur = min(ballBlur + ballSpread * max(along, 0.0), ballRadius);
    float inner = ballRadius - blur;
    float shadow = step(0.0, along)
                   * (1.0 - smoothstep(inner * inner, (ballRadius + blur) * (ballRadius + blur), asideSquared));
    // The part of the sky that a ball hides from a face that it stands over.
    float near = ballRadius / distanceSquared;
    float hidden = ballRadius * near * near * max(dot(toBall, normal), 0.0);
    return vec2(1.0 - shadow, 1.0 - min(hidden, 1.0));
}

// Of phong_frag.glsl, which stands further down.
vec3 lit(vec3 surface, float upward, float facing, float aligned, vec2 shade, float gloss, float shininess);

vec3 litWood(vec3 surface, vec3 normal, float gloss)
{
    vec2 shade = shadeOfBoard() * shadeOfBall(normal);
    return lit(surface, dot(normal, a_UpOnBoard), dot(normal, toLamp), dot(normal, halfway), shade, gloss,
               woodShininess);
}
