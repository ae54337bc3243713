#version 150 compatibility
// A line of text: places its glyphs and hands on their colour.

out vec2 glyphCoord;
out vec4 glyphColor;

//HOTSPOT_PRE_MAIN

void main()
{
    //HOTSPOT_START_MAIN
    glyphCoord = gl_MultiTexCoord0.xy;
    glyphColor = gl_Color;
    gl_Position = gl_ModelViewProjectionMatrix * gl_Vertex;
}
