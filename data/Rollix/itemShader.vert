#version 150 compatibility
// What floats above an item block: copies of a model and their plus or minus sign.

uniform vec3 a_ItemDisplace;  // where a copy hovers, in the frame that all copies share; zero for one alone
uniform float osg_SimulationTime;

out float signFace;           // 1 on the two large faces of a sign, 0 elsewhere

//HOTSPOT_PRE_MAIN

const float itemScale = 2.0;     // the group about its middle: the copies alone are too small to be told apart
const float signScale = 1.5;     // of the sign, which only explains
const vec3 signShift = vec3(0.4, -0.3, -0.1);  // of the sign towards its coin, in the items' frame
const float itemLift = 0.9;      // in the items' frame, keeps the larger copies off the block
const float turnSpeed = 1.6;     // radians a second
const float turnLinger = 0.35;   // radians that a copy stays behind and runs ahead: edge-on it is a sliver, and
                                 // hurries on
const float signSway = 0.12;     // radians, either way
const float signLean = 0.7;      // radians that a sign lies back, for who looks down on it
const float floatHeight = 0.12;  // either way, in the items' frame, five times smaller than a cell
const float floatSpeed = 2.2;    // radians a second

void main()
{
    //HOTSPOT_START_MAIN
    // Copies turn, each about its own middle; the sign, the one thing that stands to the left, only sways:
    // edge-on it could not be read.
    bool isSign = a_ItemDisplace.x < 0.0;
    float turned = turnSpeed * osg_SimulationTime;
    float angle = isSign ? signSway * sin(turned) : turned - turnLinger * sin(2.0 * turned);
    mat3 turn = rotation(vec3(0.0, 0.0, 1.0), angle);
    if (isSign)
        turn *= rotation(vec3(1.0, 0.0, 0.0), -signLean);
    signFace = isSign ? abs(gl_Normal.y) : 0.0;
    vec3 place = a_ItemDisplace + (isSign ? signShift : vec3(0.0));
    vec3 position = (isSign ? signScale : itemScale) * (turn * gl_Vertex.xyz) + itemScale * place;
    position.z += itemLift + floatHeight * sin(floatSpeed * osg_SimulationTime + a_ItemDisplace.y);

    phongAt(vec4(position, 1.0), turn * gl_Normal);
    gl_Position = gl_ModelViewProjectionMatrix * vec4(position, 1.0);
}
