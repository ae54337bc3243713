#version 150 compatibility
// A picture over the scene, with its transparency.

in vec2 imageCoord;

uniform sampler2D imageTexture;

//HOTSPOT_PRE_MAIN

void main()
{
    //HOTSPOT_START_MAIN
    gl_FragColor = texture(imageTexture, imageCoord);
}
