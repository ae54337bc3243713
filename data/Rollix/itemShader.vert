#version 150 compatibility
// What floats above an item block: copies of a model and their plus or minus sign.

uniform vec3 a_ItemDisplace;  // where a copy hovers, in the frame that all copies share; zero for one alone
uniform float osg_SimulationTime;

//HOTSPOT_PRE_MAIN

const float itemScale = 2.0;     // the group about its middle: the copies alone are too small to be told apart
const float signScale = 1.4;     // of the sign, which only explains
const vec3 signShift = vec3(0.5, -0.3, -0.3);  // of the sign towards its coin, in the items' frame
const float itemLift = 0.9;      // in the items' frame, keeps the larger copies off the block
const float turnSpeed = 1.6;     // radians a second
const float signSway = 0.45;     // radians, either way
const float floatHeight = 0.12;  // either way, in the items' frame, five times smaller than a cell
const float floatSpeed = 2.2;    // radians a second

void main()
{
    //HOTSPOT_START_MAIN
    // Copies turn, each about its own middle; the sign, the one thing that stands to the left, only sways:
    // edge-on it could not be read.
    bool isSign = a_ItemDisplace.x < 0.0;
    float angle = isSign ? signSway * sin(turnSpeed * osg_SimulationTime) : turnSpeed * osg_SimulationTime;
    mat3 turn = rotation(vec3(0.0, 0.0, 1.0), angle);
    vec3 place = a_ItemDisplace + (isSign ? signShift : vec3(0.0));
    vec3 position = (isSign ? signScale : itemScale) * (turn * gl_Vertex.xyz) + itemScale * place;
    position.z += itemLift + floatHeight * sin(floatSpeed * osg_SimulationTime + a_ItemDisplace.y);

    phongAt(vec4(position, 1.0), turn * gl_Normal);
    gl_Position = gl_ModelViewProjectionMatrix * vec4(position, 1.0);
}
