#version 150 compatibility
// A picture let into the top of a block, that says what the block does.

uniform vec3 a_InlayDirection;  // on the board; a picture that points somewhere points there

out vec2 inlayPlace;  // from the middle of the cell, along the direction and across it

//HOTSPOT_PRE_MAIN

void main()
{
    //HOTSPOT_START_MAIN
    phong();
    vec2 place = gl_MultiTexCoord0.xy;
    vec2 along = a_InlayDirection.xy;
    inlayPlace = vec2(dot(place, along), dot(place, vec2(-along.y, along.x)));
    gl_Position = gl_ModelViewProjectionMatrix * gl_Vertex;
}
