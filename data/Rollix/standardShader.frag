#version 150 compatibility
// Plain coloured things: their colour as it is, with its alpha.

in vec4 vertexColor;

//HOTSPOT_PRE_MAIN

void main()
{
    //HOTSPOT_START_MAIN
    gl_FragColor = vertexColor;
}
