#version 150 compatibility
// The board and every block on it: polished wood, stained by height.

in vec3 boardPosition;
in vec3 boardNormal;
in vec3 logPosition;
flat in vec2 cellCorner;

//HOTSPOT_PRE_MAIN

void main()
{
    //HOTSPOT_START_MAIN
    vec3 normal = phongNormal();
    float pixelSize = length(fwidth(boardPosition));
    vec3 wood = woodSurface(boardPosition, boardNormal, logPosition, cellCorner, pixelSize);
    gl_FragColor = vec4(phong(wood, normal, woodGloss, woodShininess), 1.0);
}
