#version 150 compatibility
// The board and every block on it, flagpoles and springs too. Light is worked out in board coordinates: there
// the faces of the wood lie still, and what a processor would have to do for every pixel is done here once.

// Set on what has an origin of its own: where that lies on the board, and which edges of its cell's upper
// face (towards +x, +y, -x, -y) end in the open. Zero for what is merged; that has the middle of its cell
// with the height of its block there, and its open edges, as texture coordinates.
uniform vec3 a_TextureOffset;
uniform vec4 a_OpenEdges;

uniform vec2 a_ShadeOrigin;   // of the shade map in cells, from the board's middle to its lower left corner
uniform vec3 a_ShadePoints;   // of the shade map: points along a cell, 1 / width and 1 / height in points
uniform vec2 a_GrainOrigin;   // of the picture of the grain, in cells, from the shade map's
uniform mat4 a_EyeToBoard;
uniform vec3 a_UpOnBoard;     // what is up in the world, board coordinates
uniform vec3 a_LampOnBoard;   // board coordinates
uniform vec3 a_BallOnBoard;   // the ball's middle, board coordinates
uniform vec4 a_Lacquer;       // a colour over the wood, and how much of it

out vec3 boardPosition;       // in board coordinates, as if the block had never moved
out vec3 stain;               // the wood's colour between its rings
out vec2 woodPlace;           // in the picture of the grain
out vec2 shadePlace;          // in the shade map
out vec4 inCell;              // from the cell's middle, -0.5 to 0.5; z: depth under the upper face; w: height
out vec3 facing;              // cosines of the face to up, to the lamp, to halfway between lamp and eye
out vec4 toBall;              // to its middle, units; w: how much of that is along the way to the lamp
out float ballOver;           // how far the ball's middle stands over the face, units
flat out vec4 openEdges;
flat out vec3 uphill;         // of a ramp: direction on the board and 1; zero elsewhere
flat out float upright;       // 1 for the sides of blocks, 0 for their upper faces
flat out vec3 toLamp;         // of length 1
flat out vec3 halfway;        // of length 1, between the ways to the lamp and to the eye

//HOTSPOT_PRE_MAIN

// The stains: a floor is pale, and every half unit of height is a shade darker, so that steps are seen
// from straight above as well; upright faces are darker than any top beside them.
const vec3 paleWood = vec3(0.89, 0.69, 0.43);
const vec3 amberWood = vec3(0.74, 0.43, 0.19);
const vec3 darkWood = vec3(0.40, 0.19, 0.09);
const vec3 sideStain = vec3(0.80, 0.72, 0.68);
const float sideFill = 0.8;    // how much lighter sides are where no lamp shines on them: what floor and ground
const float sideFade = 0.25;   // throw back; gone at this cosine to the lamp
const float lowestTop = 0.5;   // height of the lowest blocks
const float highestTop = 2.0;  // and of the highest

const vec2 grainShift = vec2(0.31, 0.95);  // of the cut through the log for every unit up
const float cellBorder = 0.49;             // units from the middle of a cell
const float grainSide = 1024.0 / 40.0;     // units that the picture of the grain covers,
const float grainMargin = 0.4;             // of which the shift has this much to either side
const float grainCells = 23.0;             // and cells use these; further off they are mirrored

// A place on the board in cells from the grain's origin, brought back into the picture as that cell is.
vec2 folded(vec2 place, vec2 cell)
{
    vec2 sheet = floor(cell / grainCells);
    vec2 turned = mod(sheet, 2.0);
    vec2 inSheet = place - sheet * grainCells;
    return mix(inSheet, grainCells - inSheet, turned);
}

// Of a block's top and of its sides: it is of one wood.
vec3 stainFor(float top)
{
    float height = clamp((top - lowestTop) / (highestTop - lowestTop), 0.0, 1.0);
    vec3 wood = height < 0.5 ? mix(paleWood, amberWood, 2.0 * height) : mix(amberWood, darkWood, 2.0 * height - 1.0);
    return mix(wood, a_Lacquer.rgb, a_Lacquer.a);
}

void main()
{
    //HOTSPOT_START_MAIN
    vec4 eyePlace = gl_ModelViewMatrix * gl_Vertex;
    boardPosition = gl_Vertex.xyz + a_TextureOffset;
    vec3 place = (a_EyeToBoard * eyePlace).xyz;  // on the board, wherever the block has gone

    bool own = a_TextureOffset.z > 0.0;
    vec2 middle = own ? a_TextureOffset.xy : gl_MultiTexCoord0.xy;
    float top = own ? 2.0 * a_TextureOffset.z : gl_MultiTexCoord0.z;
    openEdges = own ? a_OpenEdges : gl_MultiTexCoord1;
    inCell = vec4(boardPosition.xy - middle, top - boardPosition.z, boardPosition.z);

    vec2 inGrain = folded(boardPosition.xy + a_ShadeOrigin + a_GrainOrigin,
                          middle + a_ShadeOrigin + a_GrainOrigin);
    woodPlace = (inGrain + boardPosition.z * grainShift + grainMargin) / grainSide;

    vec3 normal = gl_Normal / max(length(gl_Normal), 1.0e-4);
    upright = normal.z < 0.2 ? 1.0 : 0.0;
    // A side does not lean further to where it looks already.
    openEdges *= 1.0 - upright * step(0.5, vec4(normal.xy, -normal.xy));
    float slope = length(normal.xy);
    uphill = upright < 0.5 && slope > 0.05 ? vec3(-normal.xy / slope, 1.0) : vec3(0.0);

    // The side of a block is lit as the cell is that it looks over; a pole stands in its own.
    vec2 border = upright * step(cellBorder, abs(inCell.xy)) * step(0.5, abs(normal.xy));
    vec2 shadeCell = middle + border * sign(normal.xy);
    vec2 inShade = clamp(boardPosition.xy - shadeCell + 0.5, 0.0, 1.0);
    vec2 point = (shadeCell - 0.5 + a_ShadeOrigin) * a_ShadePoints.x + 0.5 + inShade * (a_ShadePoints.x - 1.0);
    shadePlace = point * a_ShadePoints.yz;

    // A face is small beside its way to lamp and eye: in between, these may be mixed.
    toLamp = normalize(a_LampOnBoard - place);
    halfway = normalize(toLamp + normalize(a_EyeToBoard[3].xyz - place));
    facing = vec3(dot(normal, a_UpOnBoard), dot(normal, toLamp), dot(normal, halfway));
    float fill = sideFill * clamp(1.0 - facing.y / sideFade, 0.0, 1.0);
    stain = stainFor(top) * mix(vec3(1.0), sideStain * (1.0 + fill), upright);
    toBall.xyz = a_BallOnBoard - place;
    toBall.w = dot(toBall.xyz, toLamp);
    ballOver = dot(toBall.xyz, normal);
    gl_Position = gl_ModelViewProjectionMatrix * gl_Vertex;
}
