#!/usr/bin/env python3
"""Makes the little models that float over item blocks: coin, heart and weight.

Every model is a geode with one geometry of triangles, positions and normals; colour is the game's.
Units are those of the items' frame, in which three copies stand one unit from each other: coin and
heart keep within half a unit of their origin, so that no two of them touch however they turn.
z is up, and a model's face looks along y.
"""

import math
import sys
from pathlib import Path


def sub(a, b):
    return (a[0] - b[0], a[1] - b[1], a[2] - b[2])


def cross(a, b):
    return (a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0])


def unit(a):
    length = math.sqrt(sum(c * c for c in a))
    return (a[0] / length, a[1] / length, a[2] / length)


class Mesh:
    """Triangles over shared vertices; what is added in one call is one smooth surface."""

    def __init__(self):
        self.vertices = []
        self.normals = []
        self.triangles = []

    def facet(self, a, b, c):
        """One flat triangle, counter-clockwise as seen from outside."""
        normal = unit(cross(sub(b, a), sub(c, a)))
        first = len(self.vertices)
        self.vertices += [a, b, c]
        self.normals += [normal] * 3
        self.triangles.append((first, first + 1, first + 2))

    def surface(self, point, us, vs):
        """A smooth surface point(u, v) over a grid; u to the right, v up as seen from outside.

        Both grids rise. Normals are taken a hair inside the borders, so that a row which shrinks to a
        point and a tip of an outline have one too.
        """
        first = len(self.vertices)
        columns = len(us)
        for v in vs:
            for u in us:
                self.vertices.append(point(u, v))
                self.normals.append(self._normal(point, u, v, us, vs))
        for j in range(len(vs) - 1):
            for i in range(columns - 1):
                a = first + j * columns + i
                corners = (a, a + 1, a + 1 + columns, a + columns)
                for triangle in ((corners[0], corners[1], corners[2]),
                                 (corners[0], corners[2], corners[3])):
                    if self._area(triangle) > 1e-9:
                        self.triangles.append(triangle)

    def _normal(self, point, u, v, us, vs):
        hair_u, hair_v = (us[-1] - us[0]) * 1e-3, (vs[-1] - vs[0]) * 1e-3
        u = min(max(u, us[0] + hair_u), us[-1] - hair_u)
        v = min(max(v, vs[0] + hair_v), vs[-1] - hair_v)
        along_u = sub(point(u + hair_u, v), point(u - hair_u, v))
        along_v = sub(point(u, v + hair_v), point(u, v - hair_v))
        return unit(cross(along_u, along_v))

    def _area(self, triangle):
        a, b, c = (self.vertices[i] for i in triangle)
        return math.sqrt(sum(x * x for x in cross(sub(b, a), sub(c, a)))) / 2

    def write(self, path, name):
        def rows(values):
            return "\n".join(
                "            " + " ".join(f"{c:.5g}" if abs(c) > 5e-6 else "0" for c in v) + " "
                for v in values)

        indices = "\n".join("            %d %d %d " % t for t in self.triangles)
        path.write_text(f"""#Ascii Scene 
#Version 161 
#Generator Rollix models.py 

osg::Geode {{
  UniqueID 1 
  Name "{name}" 
  Drawables 1 {{
    osg::Geometry {{
      UniqueID 2 
      PrimitiveSetList 1 {{
        osg::DrawElementsUShort {{
          UniqueID 3 
          BufferObject FALSE 
          Mode TRIANGLES 
          vector {3 * len(self.triangles)} {{
{indices}
          }}
        }}
      }}
      VertexArray TRUE {{
        osg::Vec3Array {{
          UniqueID 4 
          BufferObject FALSE 
          Binding BIND_PER_VERTEX 
          vector {len(self.vertices)} {{
{rows(self.vertices)}
          }}
        }}
      }}
      NormalArray TRUE {{
        osg::Vec3Array {{
          UniqueID 5 
          BufferObject FALSE 
          Binding BIND_PER_VERTEX 
          vector {len(self.normals)} {{
{rows(self.normals)}
          }}
        }}
      }}
    }}
  }}
}}
""")


def span(first, last, steps):
    return [first + (last - first) * i / steps for i in range(steps + 1)]


def lathe(mesh, profile, segments, place):
    """Turns a profile of (radius, height) strips, bottom to top on the outside, about an axis.

    Each strip is smooth in itself and meets the next in an edge. place(x, y, h) puts a point that is
    turned about the third axis into the model.
    """
    around = span(0.0, 2.0 * math.pi, segments)
    for strip in profile:
        def point(angle, t, strip=strip):
            t = min(max(t, 0.0), len(strip) - 1.0)
            i = min(int(t), len(strip) - 2)
            f = t - i
            radius = strip[i][0] + (strip[i + 1][0] - strip[i][0]) * f
            height = strip[i][1] + (strip[i + 1][1] - strip[i][1]) * f
            return place(radius * math.cos(angle), radius * math.sin(angle), height)
        mesh.surface(point, around, [float(i) for i in range(len(strip))])


def arc(center, radius, start, end, steps):
    """A strip along a circle in the plane of radius and height; angles in degrees."""
    return [(center[0] + radius * math.cos(math.radians(a)),
             center[1] + radius * math.sin(math.radians(a))) for a in span(start, end, steps)]


def coin():
    """A minted coin: bevelled edge, raised rim, and a ridged star on either face."""
    radius, half, bevel = 0.48, 0.13, 0.03
    rim, field, floor = 0.40, 0.36, 0.085
    star_outer, star_inner, star_top = 0.31, 0.13, 0.135
    mesh = Mesh()

    for side in (1.0, -1.0):
        def place(x, y, h, side=side):
            return (x, -side * h, side * y)  # a turn, no mirror: faces keep looking outward
        lathe(mesh, [
            [(radius, 0.0), (radius, half - bevel)],
            arc((radius - bevel, half - bevel), bevel, 0, 90, 3),
            [(radius - bevel, half), (rim, half)],
            [(rim, half), (field, floor)],
            [(field, floor), (0.0, floor)],
        ], 40, place)

        points = []
        for i in range(10):
            reach = star_outer if i % 2 == 0 else star_inner
            angle = math.radians(90 + 36 * i)
            points.append((reach * math.cos(angle), reach * math.sin(angle) * side))
        for i in range(10):
            a, b = points[i], points[(i + 1) % 10]
            mesh.facet(place(0.0, 0.0, star_top), place(a[0], a[1], floor), place(b[0], b[1], floor)) \
                if side > 0 else \
                mesh.facet(place(0.0, 0.0, star_top), place(b[0], b[1], floor), place(a[0], a[1], floor))
    return mesh


def heart():
    """A heart as a cushion: its outline drawn in from the edge to the middle of either side."""
    scale, thickness = 0.0275, 0.19
    outline_middle = -2.5  # of the curve below, in its own units

    def outline(t):
        s = math.sin(t)
        x = 16.0 * s * s * s
        z = 13.0 * math.cos(t) - 5.0 * math.cos(2 * t) - 2.0 * math.cos(3 * t) - math.cos(4 * t)
        return scale * x, scale * (z - outline_middle)

    def point(t, v):
        # v runs from -1, the middle of the back, over the edge at 0 to the middle of the front.
        x, z = outline(t)
        reach = math.cos(v * math.pi / 2.0)
        return (reach * x, -thickness * math.sin(v * math.pi / 2.0), reach * z)

    mesh = Mesh()
    mesh.surface(lambda u, v: point(-u, v), span(0.0, 2.0 * math.pi, 36), span(-1.0, 1.0, 12))
    return mesh


def weight():
    """A cast-iron kettle-weight with a ring to lift it by."""
    mesh = Mesh()
    lathe(mesh, [
        [(0.0, -0.62), (0.40, -0.62)],
        arc((0.40, -0.55), 0.07, -90, -10, 4),
        [(0.469, -0.562), (0.54, -0.20)],
        arc((0.40, -0.17), 0.143, -12, 78, 6) + [(0.22, 0.02)],
        [(0.22, 0.02), (0.16, 0.05), (0.14, 0.10), (0.14, 0.22)],
        [(0.14, 0.22), (0.11, 0.27), (0.0, 0.29)],
    ], 32, lambda x, y, h: (x, y, h))

    ring, tube, ring_height = 0.20, 0.065, 0.44

    def torus(u, v):
        reach = ring + tube * math.cos(v)
        return (reach * math.cos(u), tube * math.sin(v), ring_height + reach * math.sin(u))
    mesh.surface(lambda u, v: torus(-u, v), span(0.0, 2.0 * math.pi, 28), span(0.0, 2.0 * math.pi, 12))
    return mesh


def check(name, mesh):
    """Every face has to look the way that its normals say, or the light falls on its inside."""
    for triangle in mesh.triangles:
        a, b, c = (mesh.vertices[i] for i in triangle)
        face = cross(sub(b, a), sub(c, a))
        mean = [sum(mesh.normals[i][k] for i in triangle) for k in range(3)]
        if sum(face[k] * mean[k] for k in range(3)) <= 0.0:
            raise SystemExit(f"{name}: a face looks against its normals at {a}")
    volume = sum(
        sum(p * q for p, q in zip(mesh.vertices[t[0]], cross(mesh.vertices[t[1]], mesh.vertices[t[2]])))
        for t in mesh.triangles) / 6.0
    if volume <= 0.0:
        raise SystemExit(f"{name}: inside out")
    return max(math.sqrt(sum(c * c for c in v)) for v in mesh.vertices)


def main():
    target = Path(sys.argv[1])
    for name, make in (("coin", coin), ("heart", heart), ("weight", weight)):
        mesh = make()
        reach = check(name, mesh)
        mesh.write(target / f"{name}.osgt", name)
        print(f"{name}: {len(mesh.vertices)} vertices, {len(mesh.triangles)} triangles, reach {reach:.3f}")


if __name__ == "__main__":
    main()
