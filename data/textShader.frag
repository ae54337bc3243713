#version 150 compatibility
// A line of text: glyphs out of the font's atlas, on an outline in the backdrop's colour.

// osgText passes backdrop and atlas as defines on the text's own state set.
#pragma import_defines(BACKDROP_COLOR, OUTLINE, TEXTURE_DIMENSION, GLYPH_DIMENSION)

#ifndef BACKDROP_COLOR
#define BACKDROP_COLOR vec4(1.0)
#endif
#ifndef OUTLINE
#define OUTLINE 0.0
#endif
#ifndef TEXTURE_DIMENSION
#define TEXTURE_DIMENSION 1024.0
#endif
#ifndef GLYPH_DIMENSION
#define GLYPH_DIMENSION 32.0
#endif

in vec2 glyphCoord;
in vec4 glyphColor;

uniform sampler2D GlyphTexture;  // how much of a texel a glyph covers, in its alpha

//HOTSPOT_PRE_MAIN

// Eight ways round a point. The strokes of a glyph are wider than its outline, so that one circle of them
// leaves no gap; lookups are what a line of text costs.
const float diagonal = 0.70710678;
const vec2 ways[8] = vec2[8](vec2(1.0, 0.0), vec2(diagonal, diagonal), vec2(0.0, 1.0), vec2(-diagonal, diagonal),
                             vec2(-1.0, 0.0), vec2(-diagonal, -diagonal), vec2(0.0, -1.0), vec2(diagonal, -diagonal));

float coverage(vec2 coord)
{
    return texture(GlyphTexture, coord).a;
}

// The outline is the glyph grown to every side. A point is bare of it as far as the points of a circle
// round it are bare of the glyph; their product leaves a soft rim of a pixel and a full white inside.
float grownCoverage(vec2 coord, float radius)
{
    float bare = 1.0;
    for (int i = 0; i < 8; ++i)
        bare *= 1.0 - coverage(coord + radius * ways[i]);
    return 1.0 - bare;
}

void main()
{
    //HOTSPOT_START_MAIN
    float glyph = coverage(glyphCoord);
    // OUTLINE is the width as a part of a glyph's size; coordinates count the whole atlas.
    float radius = float(OUTLINE) * float(GLYPH_DIMENSION) / float(TEXTURE_DIMENSION);
    float grown = grownCoverage(glyphCoord, radius);

    vec4 backdrop = BACKDROP_COLOR;
    vec3 color = mix(backdrop.rgb, glyphColor.rgb, glyph);
    float alpha = glyphColor.a * max(glyph, backdrop.a * grown);
    if (alpha <= 0.0)
        discard;
    gl_FragColor = vec4(color, alpha);
}
