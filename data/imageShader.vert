#version 150 compatibility
// A picture over the scene.

out vec2 imageCoord;

//HOTSPOT_PRE_MAIN

void main()
{
    //HOTSPOT_START_MAIN
    imageCoord = gl_MultiTexCoord0.xy;
    gl_Position = gl_ModelViewProjectionMatrix * gl_Vertex;
}
