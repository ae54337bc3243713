// Polished wood, needs classicnoise3D.glsl above it. The board is thought of as sawn from one log: a
// point's place in the log decides its ring, so the grain runs on from block to block and round every
// edge, whatever the blocks are.

const float ringsPerUnit = 2.6;
const float ringWander = 0.55;    // how far a ring strays from its circle, in units
const vec3 ringStretch = vec3(0.16, 0.55, 0.55);  // strays slowly along the log, faster across it
const vec3 poreCells = vec3(2.6, 30.0, 30.0);  // a unit: pores are thin and long
const float poreShare = 0.35;     // of the cells, that have one
const float poreDetail = 0.03;    // units a pixel from which on pores are too small to be seen

// How dark the grain is at a place in the log (its axis along x), 0 between rings to 1 in a ring's dark
// late wood. pixelSize is the width of a screen pixel there, in units.
float woodGrain(vec3 place, float pixelSize)
{
    float wander = classicNoise(place * ringStretch);
    float ring = fract((length(place.yz) + ringWander * wander) * ringsPerUnit);
    // A year grows pale and wide in spring, darkens to autumn and breaks off; the break is drawn as wide
    // as a pixel at least, so that far rings do not flicker.
    float breakWidth = clamp(pixelSize * ringsPerUnit * 1.5, 0.06, 0.5);
    float grain = ring * ring * (1.0 - smoothstep(1.0 - breakWidth, 1.0, ring));
    // Where the cut follows a ring the board shows broad flames; a slow change of depth keeps them alive.
    grain *= 0.75 + 0.35 * wander;

    // One hash a pore instead of noise again: noise is what a frame of this costs.
    vec3 cell = floor(place * poreCells);
    vec3 inCell = place * poreCells - cell;
    vec3 inside = inCell * (1.0 - inCell);
    float chance = float(noiseHash(uvec3(ivec3(cell))) & 1023u) / 1023.0;
    float pore = step(chance, poreShare) * 64.0 * inside.x * inside.y * inside.z;
    grain += 0.42 * pore * max(1.0 - pixelSize / poreDetail, 0.0);
    return clamp(grain, 0.0, 1.0);
}

// The stains: a floor is pale, and every half unit of height is a shade darker, so that steps are seen
// from straight above as well; upright faces are darker than any top beside them.
const vec3 paleWood = vec3(0.90, 0.69, 0.42);
const vec3 amberWood = vec3(0.69, 0.41, 0.19);
const vec3 darkWood = vec3(0.36, 0.18, 0.09);
const vec3 wallStain = vec3(0.46, 0.40, 0.38);
const float lowestTop = 0.5;       // height of the lowest blocks
const float highestTop = 2.0;      // and of the highest
const float grainContrast = 0.42;
const float seamWidth = 0.035;     // units on either side of the line between two cells
const float seamShade = 0.72;
const float footShade = 0.55;      // what is left of the light at the foot of an upright face

const float woodGloss = 0.28;
const float woodShininess = 48.0;

// The colour of a point of the board: where it is on the board and in the log, which way its face looks
// (any length; zero is an upright face), and where cells end, as boardShader.vert finds it.
vec3 woodSurface(vec3 board, vec3 normal, vec3 place, vec2 cellCorner, float pixelSize)
{
    float lengthSquared = dot(normal, normal);
    float top = lengthSquared > 1.0e-8 ? smoothstep(0.3, 0.6, normal.z * inversesqrt(lengthSquared)) : 0.0;

    float height = clamp((board.z - lowestTop) / (highestTop - lowestTop), 0.0, 1.0);
    vec3 stain = height < 0.5 ? mix(paleWood, amberWood, 2.0 * height)
                              : mix(amberWood, darkWood, 2.0 * height - 1.0);
    vec3 wood = stain * (1.0 - grainContrast * woodGrain(place, pixelSize));

    // Round things have corners anywhere; only those of cells make a seam.
    vec2 fromHalf = abs(abs(cellCorner - 0.5) - 0.25);
    float isCell = step(max(fromHalf.x, fromHalf.y), 0.01);
    vec2 toSeam = abs(fract(board.xy - cellCorner + 0.75) - 0.5);
    float seam = 1.0 - smoothstep(0.0, max(seamWidth, pixelSize), min(toSeam.x, toSeam.y));
    float onTop = mix(1.0, seamShade, seam * isCell);

    vec3 onWall = wallStain * mix(footShade, 1.0, smoothstep(-0.1, 1.2, board.z));
    return wood * mix(onWall, vec3(onTop), top);
}
