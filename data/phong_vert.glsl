// Lighting, vertex side: hands to phong_frag.glsl what it needs in eye space. Stages that move their
// vertices call phongAt() with what they have made of them, the others plain phong().

uniform vec3 a_LightPos;      // world coordinates, set once on the root of the scene
uniform mat4 osg_ViewMatrix;  // world to eye, set by the scene graph for every view

out vec3 eyePosition;
out vec3 eyeNormal;  // of any length, the fragment side normalises
out vec3 eyeToLight;

void phongAt(vec4 position, vec3 normal)
{
    eyePosition = (gl_ModelViewMatrix * position).xyz;
    eyeNormal = gl_NormalMatrix * normal;
    eyeToLight = (osg_ViewMatrix * vec4(a_LightPos, 1.0)).xyz - eyePosition;
}

void phong()
{
    phongAt(gl_Vertex, gl_Normal);
}
