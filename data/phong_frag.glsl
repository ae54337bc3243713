// Lighting, fragment side: one point light of the scene with a Blinn-Phong highlight, and a sky above a
// darker ground instead of a flat ambient term, so that faces turned from the light keep their shape.
// Written for processors as much as for graphics cards: what is linear over a face comes interpolated.

in vec3 eyePosition;
in vec3 eyeNormal;
in vec3 eyeToLight;

uniform mat4 osg_ViewMatrix;  // world to eye, set by the scene graph for every view

const vec3 skyLight = vec3(0.44, 0.46, 0.52);
const vec3 groundLight = vec3(0.36, 0.30, 0.25);
const vec3 lampLight = vec3(0.80, 0.77, 0.70);
const float cornerLight = 0.7;  // of the lamp, where nothing is seen of the sky

// A quad whose first edge has no length was given a normal of length zero by the cross product that
// made it. The face itself still knows how it lies.
vec3 phongNormal()
{
    vec3 face = cross(dFdx(eyePosition), dFdy(eyePosition));
    return normalize(dot(eyeNormal, eyeNormal) > 1.0e-8 ? eyeNormal : face);
}

// The colour of a surface that gets a part of the light only: shade is what is left of the lamp and of the
// sky, each 0 to 1. Its normal comes as its cosines to up, to the lamp and to halfway between lamp and eye.
// gloss is the strength of the highlight, 0 to 1, and shininess the Blinn-Phong exponent that says how small
// it is.
vec3 lit(vec3 surface, float upward, float facing, float aligned, vec2 shade, float gloss, float shininess)
{
    vec3 ambient = shade.y * mix(groundLight, skyLight, 0.5 + 0.5 * upward);
    // Light that comes off other faces does not get into corners, either.
    float lamp = shade.x * mix(cornerLight, 1.0, shade.y);
    // Schlick's fraction falls off like the power with this exponent and costs a division.
    float near = max(aligned, 0.0);
    float highlight = near / (shininess - shininess * near + near);

    return surface * (ambient + lampLight * (lamp * max(facing, 0.0))) + lampLight * (gloss * lamp * highlight);
}

// The same by its normal and the way to the lamp, both of length 1.
vec3 shaded(vec3 surface, vec3 normal, vec3 toLight, vec2 shade, float gloss, float shininess)
{
    vec3 middle = normalize(toLight + normalize(-eyePosition));
    return lit(surface, dot(normal, osg_ViewMatrix[2].xyz), dot(normal, toLight), dot(normal, middle), shade,
               gloss, shininess);
}

// The colour of a surface in full light.
vec3 phong(vec3 surface, vec3 normal, float gloss, float shininess)
{
    return shaded(surface, normal, normalize(eyeToLight), vec2(1.0), gloss, shininess);
}
