// Lighting, vertex side, for programs with a geometry stage: the names that phong_frag.glsl reads are
// that stage's to write, so what goes into it has names of its own.

out vec3 vertexEyePosition;
out vec3 vertexEyeNormal;
out vec3 vertexModelPosition;  // where the vertex lies on the object, for patterns that turn with it

void phong()
{
    vertexEyePosition = (gl_ModelViewMatrix * gl_Vertex).xyz;
    vertexEyeNormal = gl_NormalMatrix * gl_Normal;
    vertexModelPosition = gl_Vertex.xyz;
}
