// Lighting, vertex side: hands position and normal to phong_frag.glsl in eye space. Stages that move
// their vertices call phongAt() with what they have made of them, the others plain phong().

out vec3 eyePosition;
out vec3 eyeNormal;  // of any length, the fragment side normalises

void phongAt(vec4 position, vec3 normal)
{
    eyePosition = (gl_ModelViewMatrix * position).xyz;
    eyeNormal = gl_NormalMatrix * normal;
}

void phong()
{
    phongAt(gl_Vertex, gl_Normal);
}
