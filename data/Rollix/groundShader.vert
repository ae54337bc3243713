#version 150 compatibility
// The ground: a thin square far under the board.

out vec2 groundPlace;  // in its picture

//HOTSPOT_PRE_MAIN

const float groundSide = 30.0;  // units

void main()
{
    //HOTSPOT_START_MAIN
    groundPlace = gl_Vertex.xy / groundSide + 0.5;  // the ground is level and never turned
    gl_Position = gl_ModelViewProjectionMatrix * gl_Vertex;
}
