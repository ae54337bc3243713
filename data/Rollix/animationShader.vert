#version 150 compatibility
// The cap of a button, eased from one pose to another.

uniform vec3 a_Pose;                 // offset from where the cap was made, in units
uniform vec3 a_PoseAnimationTarget;
uniform float a_PoseAnimationStart;  // seconds of the simulation's clock
uniform float a_PoseAnimationEnd;

out vec3 capPosition;  // on the unmoved cap, about its own centre

//HOTSPOT_PRE_MAIN

void main()
{
    //HOTSPOT_START_MAIN
    float progress = easeOutBack(easeProgress(a_PoseAnimationStart, a_PoseAnimationEnd));
    vec4 position = vec4(gl_Vertex.xyz + mix(a_Pose, a_PoseAnimationTarget, progress), 1.0);
    phongAt(position, gl_Normal);
    capPosition = gl_Vertex.xyz;
    gl_Position = gl_ModelViewProjectionMatrix * position;
}
