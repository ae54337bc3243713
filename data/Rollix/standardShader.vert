#version 150 compatibility
// Plain coloured things: ground, trail, sparks, portal mouths; with lighting injected, the ball.

out vec4 vertexColor;
out vec3 facePosition;  // in eye space

//HOTSPOT_PRE_MAIN

void main()
{
    //HOTSPOT_START_MAIN
    gl_Position = gl_ModelViewProjectionMatrix * gl_Vertex;
    facePosition = (gl_ModelViewMatrix * gl_Vertex).xyz;
    vertexColor = gl_Color;
}
