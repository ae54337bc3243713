#version 150 compatibility
// Plain coloured things: their colour with its alpha, a little darker the more a face turns away from the
// eye, so that boxes and cylinders have sides. Not all of these things have normals worth the name (the
// trail's point out of the board's middle), so a face is asked how it lies itself.

in vec4 vertexColor;
in vec3 facePosition;

//HOTSPOT_PRE_MAIN

const float edgeOnShade = 0.55;  // what is left of the colour of a face that is seen edge-on
const float smallest = 1.0e-20;   // keeps a face without a size from dividing by zero

void main()
{
    //HOTSPOT_START_MAIN
    vec3 face = cross(dFdx(facePosition), dFdy(facePosition));
    float lengths = dot(face, face) * dot(facePosition, facePosition);
    float facing = abs(dot(face, facePosition)) * inversesqrt(max(lengths, smallest));
    // A colour may be brighter than the screen is; the shade is taken of what it shows.
    gl_FragColor = vec4(min(vertexColor.rgb, 1.0) * mix(edgeOnShade, 1.0, facing), vertexColor.a);
}
