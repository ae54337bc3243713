#version 150 compatibility
// The board and every block on it, flagpoles and springs too.

uniform vec3 a_TextureOffset;  // where a block's own origin lies on the board; zero for what is merged

out vec3 boardPosition;      // in board coordinates, whatever the block does
out vec3 boardNormal;        // of any length, zero where a face has none to give
out vec3 logPosition;        // in the log that the board is sawn from
flat out vec2 cellCorner;    // 0.25 when cells end at whole numbers, 0.75 when at halves: odd boards

//HOTSPOT_PRE_MAIN

// The log's axis lies far under the board and leans, so that the cut shows long flames, not plain stripes.
const vec3 logAxis = vec3(0.0, 2.3, -7.0);
const float logLean = 0.045;   // radians, about the board's y axis
const float logTurn = 0.06;    // radians, about the board's z axis

void main()
{
    //HOTSPOT_START_MAIN
    phong();
    boardPosition = gl_Vertex.xyz + a_TextureOffset;
    boardNormal = gl_Normal;
    logPosition = rotation(vec3(0.0, 1.0, 0.0), logLean) * rotation(vec3(0.0, 0.0, 1.0), logTurn)
                  * (boardPosition - logAxis);
    cellCorner = fract(boardPosition.xy + 0.25);
    gl_Position = gl_ModelViewProjectionMatrix * gl_Vertex;
}
