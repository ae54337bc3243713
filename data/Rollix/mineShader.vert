#version 150 compatibility
// A mine: a small ball while it waits, a large one for the half second of its blast.

out vec3 minePosition;  // model coordinates: the ball's size is not told in any other way

//HOTSPOT_PRE_MAIN

void main()
{
    //HOTSPOT_START_MAIN
    minePosition = gl_Vertex.xyz;
    gl_Position = gl_ModelViewProjectionMatrix * gl_Vertex;
}
