// Gradient noise in three dimensions: every corner of a unit grid gets a slope out of a hash of its
// coordinates, and a point gets what the slopes of its cell's eight corners say about it, blended with a
// curve that is level at both ends, so that no grid shows. Integer hashing instead of a table of random
// numbers: no texture to bind, and the same picture on every card.

// Mixes the bits of a corner's coordinates. The multipliers are odd numbers with their bits well spread;
// the shifts let the high bits, which the products stir best, act on the low ones.
uint noiseHash(uvec3 corner)
{
    uint h = corner.x * 0x8da6b343u ^ corner.y * 0xd8163841u ^ corner.z * 0xcb1ab31fu;
    h = (h ^ (h >> 15u)) * 0x2c1b3c6du;
    return h ^ (h >> 13u);
}

// What a corner says about a point away from it: ten bits a component make its slope.
float noiseSlope(ivec3 corner, vec3 away)
{
    uint h = noiseHash(uvec3(corner));
    vec3 slope = vec3(uvec3(h, h >> 10u, h >> 20u) & 1023u) * (2.0 / 1023.0) - 1.0;
    return dot(slope, away);
}

// Smooth noise about zero, mostly within -1 and 1, with features about one unit wide.
float classicNoise(vec3 point)
{
    vec3 cell = floor(point);
    ivec3 c = ivec3(cell);
    vec3 f = point - cell;
    vec3 w = f * f * f * (f * (f * 6.0 - 15.0) + 10.0);

    vec4 low = vec4(noiseSlope(c, f),
                    noiseSlope(c + ivec3(1, 0, 0), f - vec3(1.0, 0.0, 0.0)),
                    noiseSlope(c + ivec3(0, 1, 0), f - vec3(0.0, 1.0, 0.0)),
                    noiseSlope(c + ivec3(1, 1, 0), f - vec3(1.0, 1.0, 0.0)));
    vec4 high = vec4(noiseSlope(c + ivec3(0, 0, 1), f - vec3(0.0, 0.0, 1.0)),
                     noiseSlope(c + ivec3(1, 0, 1), f - vec3(1.0, 0.0, 1.0)),
                     noiseSlope(c + ivec3(0, 1, 1), f - vec3(0.0, 1.0, 1.0)),
                     noiseSlope(c + ivec3(1, 1, 1), f - vec3(1.0, 1.0, 1.0)));
    vec4 layer = mix(low, high, w.z);
    vec2 row = mix(layer.xy, layer.zw, w.y);
    return 1.3 * mix(row.x, row.y, w.x);
}
