#version 150 compatibility
// The board and every block on it, flagpoles and springs too.

// Set on what has an origin of its own: where that lies on the board, and which edges of its cell's upper
// face (towards +x, +y, -x, -y) end in the open. Zero for what is merged; that has the middle of its cell
// with the height of its block there, and its open edges, as texture coordinates.
uniform vec3 a_TextureOffset;
uniform vec4 a_OpenEdges;

uniform vec2 a_ShadeOrigin;   // of the shade map in cells, from the board's middle to its lower left corner
uniform vec3 a_ShadePoints;   // of the shade map: points along a cell, 1 / width and 1 / height in points
uniform vec3 a_BallPosition;  // the ball's middle, world coordinates

out vec3 boardPosition;       // in board coordinates, whatever the block does
out vec3 boardNormal;         // of any length, zero where a face has none to give
out vec2 woodPlace;           // in the picture of the grain
out vec2 shadePlace;          // in the shade map
out vec3 inCell;              // from the cell's middle, -0.5 to 0.5; z is the depth under the upper face
flat out vec4 openEdges;
flat out vec3 uphill;         // of a ramp: direction on the board and 1; zero elsewhere
flat out float upright;       // 1 for the sides of blocks, 0 for their upper faces
flat out vec3 eyeBall;        // the ball's middle
flat out mat3 boardToEye;

//HOTSPOT_PRE_MAIN

const vec2 grainShift = vec2(0.31, 0.95);  // of the cut through the log for every unit up
const float cellBorder = 0.49;             // units from the middle of a cell
const float grainTile = 1024.0 / 40.0;     // units that the picture of the grain covers

void main()
{
    //HOTSPOT_START_MAIN
    phong();
    boardPosition = gl_Vertex.xyz + a_TextureOffset;
    boardNormal = gl_Normal;
    woodPlace = (boardPosition.xy + boardPosition.z * grainShift) / grainTile + 0.5;

    bool own = a_TextureOffset.z > 0.0;
    vec2 middle = own ? a_TextureOffset.xy : gl_MultiTexCoord0.xy;
    float top = own ? 2.0 * a_TextureOffset.z : gl_MultiTexCoord0.z;
    openEdges = own ? a_OpenEdges : gl_MultiTexCoord1;
    inCell = vec3(boardPosition.xy - middle, top - boardPosition.z);

    vec3 normal = gl_Normal / max(length(gl_Normal), 1.0e-4);
    upright = normal.z < 0.2 ? 1.0 : 0.0;
    float slope = length(normal.xy);
    uphill = upright < 0.5 && slope > 0.05 ? vec3(-normal.xy / slope, 1.0) : vec3(0.0);

    // The side of a block is lit as the cell is that it looks over; a pole stands in its own.
    vec2 border = upright * step(cellBorder, abs(inCell.xy)) * step(0.5, abs(normal.xy));
    vec2 shadeCell = middle + border * sign(normal.xy);
    vec2 inShade = clamp(boardPosition.xy - shadeCell + 0.5, 0.0, 1.0);
    vec2 point = (shadeCell - 0.5 + a_ShadeOrigin) * a_ShadePoints.x + 0.5 + inShade * (a_ShadePoints.x - 1.0);
    shadePlace = point * a_ShadePoints.yz;

    eyeBall = (osg_ViewMatrix * vec4(a_BallPosition, 1.0)).xyz;
    boardToEye = gl_NormalMatrix;
    gl_Position = gl_ModelViewProjectionMatrix * gl_Vertex;
}
