#version 150 compatibility
// The ball. While it goes through a portal it is drawn twice, at the mouth where it goes in and at the one
// where it comes out, and every point of it is shown at one of the two places only.

layout(triangles) in;
layout(triangle_strip, max_vertices = 6) out;

uniform bool a_PortalActive;          // the three matrices are only set while this is true
uniform mat4 a_PortalSenderMatrix;    // block to world
uniform mat4 a_PortalReceiverMatrix;  // frame one unit out of the block's mouth to world
uniform mat4 a_PortalRotationMatrix;  // way into the sender to way out of the receiver
uniform vec3 a_LightPos;              // world coordinates
uniform mat4 osg_ViewMatrix;          // these three by the scene graph, for every view
uniform mat4 osg_ViewMatrixInverse;
uniform mat4 osg_ProjectionMatrix;

in vec4 vertexColor[];
in vec3 vertexEyePosition[];
in vec3 vertexEyeNormal[];
in vec3 vertexModelPosition[];

out vec4 ballColor;
out vec3 ballPosition;   // on the ball
out vec3 eyePosition;
out vec3 eyeNormal;
out vec3 eyeToLight;
out float shown;         // below zero: the other mouth shows this point

//HOTSPOT_PRE_MAIN

const float cellHalf = 0.5;
const float highestHalf = 1.0;  // half the height of the highest block
const float notClipped = 1.0;

// What turns board coordinates by the board's tilt is the rotation of any block that is fixed to it, and
// the board turns about the world's origin: so a block's matrix tells its place on the board.
float boardHeight(mat4 blockToWorld)
{
    return dot(blockToWorld[2].xyz, blockToWorld[3].xyz);
}

// Whether the sender's mouth is on its top. A receiver that opens upward has its frame a unit above its
// middle, higher than any block's middle; and the rotation keeps the vertical but for its sign when both
// mouths are on a side or both on top, and lays it down when they differ.
bool sendsDown()
{
    bool receivesUp = boardHeight(a_PortalReceiverMatrix) > highestHalf + 0.1;
    bool alike = abs(a_PortalRotationMatrix[2].z) > 0.5;
    return receivesUp == alike;
}

// How far a point is outside the sender, in front of the face that has the mouth; below zero inside.
float outsideSender(vec3 point, bool down)
{
    if (down)
        return point.z - boardHeight(a_PortalSenderMatrix);
    return max(abs(point.x), abs(point.y)) - cellHalf;
}

void emitTriangle(mat4 eyeToEye, vec3 side)
{
    vec3 eyeLight = (osg_ViewMatrix * vec4(a_LightPos, 1.0)).xyz;
    for (int i = 0; i < 3; ++i) {
        vec4 eye = eyeToEye * vec4(vertexEyePosition[i], 1.0);
        eyePosition = eye.xyz;
        eyeNormal = mat3(eyeToEye) * vertexEyeNormal[i];
        eyeToLight = eyeLight - eyePosition;
        ballColor = vertexColor[i];
        ballPosition = vertexModelPosition[i];
        shown = side[i];
        gl_Position = osg_ProjectionMatrix * eye;
        EmitVertex();
    }
    EndPrimitive();
}

void main()
{
    //HOTSPOT_START_MAIN
    if (!a_PortalActive) {
        emitTriangle(mat4(1.0), vec3(notClipped));
        return;
    }

    mat4 worldToSender = inverse(a_PortalSenderMatrix);
    mat4 eyeToSender = worldToSender * osg_ViewMatrixInverse;
    bool down = sendsDown();
    vec3 outside;
    for (int i = 0; i < 3; ++i)
        outside[i] = outsideSender((eyeToSender * vec4(vertexEyePosition[i], 1.0)).xyz, down);

    if (any(greaterThan(outside, vec3(0.0))))
        emitTriangle(mat4(1.0), outside);
    if (any(lessThan(outside, vec3(0.0)))) {
        mat4 through = a_PortalReceiverMatrix * a_PortalRotationMatrix * worldToSender;
        emitTriangle(osg_ViewMatrix * through * osg_ViewMatrixInverse, -outside);
    }
}
