#version 150 compatibility
// The cloth of a flag: ten vertices in the plane of x and z, hoisted at x = 0, waved and moved here.

uniform vec3 a_Pose;                 // offset from where it was made, in units
uniform vec3 a_PoseAnimationTarget;
uniform float a_PoseAnimationStart;  // seconds of the simulation's clock
uniform float a_PoseAnimationEnd;
uniform vec3 a_LightPos;             // world coordinates
uniform mat4 osg_ViewMatrix;

out vec3 eyeNormal;
out vec3 eyeToLight;
out vec2 cloth;  // place on the cloth, 0 at pole and lower edge, 1 at the loose end and upper edge

//HOTSPOT_PRE_MAIN

const float flagSize = 0.4;      // length and height, units
const float waveHeight = 0.09;   // at the loose end, units
const float waveNumber = 13.0;   // radians a unit
const float waveSpeed = 6.5;     // radians a second
const float sag = 0.05;          // how much the loose end hangs, units

void main()
{
    //HOTSPOT_START_MAIN
    vec3 position = gl_Vertex.xyz;
    float along = position.x / flagSize;

    // Tops of blocks lie at whole quarters of a unit, the cloth's upper edge 1.55 above one and its lower
    // edge 1.15: what is left over a quarter tells them apart.
    cloth = vec2(along, step(fract(position.z * 4.0), 0.4));

    // Every flag waves in a time of its own, by where on the board it stands.
    float phase = waveNumber * position.x - waveSpeed * osg_SimulationTime
                  + dot(gl_ModelViewMatrix[3].xy, vec2(0.7, 1.3));
    float lift = waveHeight * along * sin(phase);
    float slope = waveHeight * (sin(phase) / flagSize + along * waveNumber * cos(phase));
    position.y += lift;
    position.z -= sag * along * along;

    position += mix(a_Pose, a_PoseAnimationTarget,
                    easeInOut(easeProgress(a_PoseAnimationStart, a_PoseAnimationEnd)));

    eyeNormal = gl_NormalMatrix * vec3(slope, -1.0, 0.0);
    eyeToLight = (osg_ViewMatrix * vec4(a_LightPos, 1.0) - gl_ModelViewMatrix * vec4(position, 1.0)).xyz;
    gl_Position = gl_ModelViewProjectionMatrix * vec4(position, 1.0);
}
