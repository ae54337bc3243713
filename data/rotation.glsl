// Rotation about an axis by an angle in radians, counter-clockwise when the axis points at the viewer
// (Rodrigues' formula written as a matrix). The axis must have length one.

mat3 rotation(vec3 axis, float angle)
{
    float s = sin(angle);
    float c = cos(angle);
    vec3 t = (1.0 - c) * axis;
    return mat3(t.x * axis + vec3(c, s * axis.z, -s * axis.y),
                t.y * axis + vec3(-s * axis.z, c, s * axis.x),
                t.z * axis + vec3(s * axis.y, -s * axis.x, c));
}
