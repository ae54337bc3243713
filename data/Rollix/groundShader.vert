#version 150 compatibility
// The ground: a thin square far under the board.

uniform mat4 a_WorldToBoard;
uniform vec3 a_LightPos;  // world coordinates

out vec3 groundColor;
out vec2 groundPlace;  // world coordinates, of which it is level and never turned
out vec3 shadowPlace;  // where the light comes through the board's plane, in board coordinates times z

//HOTSPOT_PRE_MAIN

void main()
{
    //HOTSPOT_START_MAIN
    vec3 point = (a_WorldToBoard * gl_Vertex).xyz;
    vec3 lamp = (a_WorldToBoard * vec4(a_LightPos, 1.0)).xyz;
    // On the way from the point to the lamp; a quotient, which only the fragment may divide.
    shadowPlace = vec3(point.xy * lamp.z - lamp.xy * point.z, lamp.z - point.z);
    groundColor = gl_Color.rgb;
    groundPlace = gl_Vertex.xy;
    gl_Position = gl_ModelViewProjectionMatrix * gl_Vertex;
}
