#version 150 compatibility
// A line of text: glyphs out of the font's atlas, on an outline in the backdrop's colour.

// osgText passes backdrop and atlas as defines on the text's own state set.
#pragma import_defines(BACKDROP_COLOR, OUTLINE, GLYPH_DIMENSION)

#ifndef BACKDROP_COLOR
#define BACKDROP_COLOR vec4(1.0)
#endif
#ifndef OUTLINE
#define OUTLINE 0.0
#endif
#ifndef GLYPH_DIMENSION
#define GLYPH_DIMENSION 32.0
#endif

in vec2 glyphCoord;
in vec4 glyphColor;

uniform sampler2D GlyphTexture;  // how much of a texel a glyph covers, in its alpha

//HOTSPOT_PRE_MAIN

// Eight ways round a point. The strokes of a glyph are wider than its outline, so that one circle of them
// leaves no gap.
const float diagonal = 0.70710678;
const vec2 ways[8] = vec2[8](vec2(1.0, 0.0), vec2(diagonal, diagonal), vec2(0.0, 1.0), vec2(-diagonal, diagonal),
                             vec2(-1.0, 0.0), vec2(-diagonal, -diagonal), vec2(0.0, -1.0), vec2(diagonal, -diagonal));

float coverage(vec2 texel)
{
    ivec2 last = textureSize(GlyphTexture, 0) - 1;
    return texelFetch(GlyphTexture, clamp(ivec2(texel), ivec2(0), last), 0).a;
}

// The outline is the glyph grown to every side. A point is bare of it as far as the points of a circle
// round it are bare of the glyph; their product leaves a soft rim of a pixel and a full white inside.
// Lookups are what a line of text costs, and on a processor a filtered one costs many plain ones: each point
// of the circle is mixed from two texels on its way.
float grownCoverage(vec2 texel, float radius)
{
    float bare = 1.0;
    for (int i = 0; i < 8; ++i) {
        float near = coverage(texel + floor(radius) * ways[i]);
        float far = coverage(texel + ceil(radius) * ways[i]);
        bare *= 1.0 - mix(near, far, fract(radius));
    }
    return 1.0 - bare;
}

void main()
{
    //HOTSPOT_START_MAIN
    float glyph = texture(GlyphTexture, glyphCoord).a;
    // In texels: OUTLINE is the width as a part of a glyph's size.
    float radius = float(OUTLINE) * float(GLYPH_DIMENSION);
    float grown = grownCoverage(glyphCoord * vec2(textureSize(GlyphTexture, 0)), radius);

    vec4 backdrop = BACKDROP_COLOR;
    vec3 color = mix(backdrop.rgb, glyphColor.rgb, glyph);
    float alpha = glyphColor.a * max(glyph, backdrop.a * grown);
    if (alpha <= 0.0)
        discard;
    gl_FragColor = vec4(color, alpha);
}
