#version 150 compatibility
// The ground: its picture has grain, shadow and edge in it.

in vec2 groundPlace;

uniform sampler2D a_GroundPicture;

//HOTSPOT_PRE_MAIN

void main()
{
    //HOTSPOT_START_MAIN
    gl_FragColor = vec4(texture(a_GroundPicture, groundPlace).rgb, 1.0);
}
