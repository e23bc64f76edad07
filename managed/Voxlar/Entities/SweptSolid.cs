using System;
using System.Collections.Generic;
using Velbor.Voxlar.Profiles;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>
/// Builds the mesh of a body from the places that the outline of a profile takes one after the other. Faces
/// that meet at less than 40 degrees are smoothed over.
/// </summary>
internal static class SweptSolid
{
    private static readonly double SmoothCosine = Math.Cos(40 * Math.PI / 180);

    /// <summary>
    /// The points of an outline in one row: those of the outer polygon, then those of each hole.
    /// </summary>
    public static Vector2[] Flatten(ProfileOutline outline)
    {
        List<Vector2> points = new(outline.Outer);
        foreach (Vector2[] hole in outline.Holes)
            points.AddRange(hole);
        return points.ToArray();
    }

    /// <summary>Builds the mesh.</summary>
    /// <param name="name">The name of the mesh.</param>
    /// <param name="outline">The outline of the profile.</param>
    /// <param name="sections">
    /// For each place, where the points of the outline lie there, in the order of Flatten.
    /// </param>
    /// <param name="closed">
    /// Whether the last place is the first one again, so that there are no end faces.
    /// </param>
    public static Mesh Build(string name, ProfileOutline outline, IReadOnlyList<Vector3[]> sections,
        bool closed)
    {
        Vector2[] flat = Flatten(outline);
        SurfaceBuilder surface = new();
        int start = 0;
        AddWall(surface, sections, start, outline.Outer.Length, closed);
        start += outline.Outer.Length;
        foreach (Vector2[] hole in outline.Holes)
        {
            AddWall(surface, sections, start, hole.Length, closed);
            start += hole.Length;
        }
        if (!closed)
        {
            List<int[]> faces = Faces(outline, flat);
            AddCap(surface, flat, faces, sections[^1], reversed: false);
            AddCap(surface, flat, faces, sections[0], reversed: true);
        }
        surface.OrientOutward();
        return surface.ToMesh(name);
    }

    private static List<int[]> Faces(ProfileOutline outline, Vector2[] flat)
    {
        List<int[]> faces = new();
        if (outline.Holes.Count == 0)
        {
            int[] all = new int[flat.Length];
            for (int i = 0; i < all.Length; ++i)
                all[i] = i;
            faces.Add(all);
            return faces;
        }
        List<int> sizes = new();
        foreach (Vector2[] hole in outline.Holes)
            sizes.Add(hole.Length);
        List<int> triangles = Triangulator.CutWithHoles(flat, outline.Outer.Length, sizes);
        for (int i = 0; i < triangles.Count; i += 3)
            faces.Add([triangles[i], triangles[i + 1], triangles[i + 2]]);
        return faces;
    }

    private static void AddCap(
        SurfaceBuilder surface, Vector2[] flat, List<int[]> faces, Vector3[] section, bool reversed)
    {
        Vector2 minimum = flat[0];
        Vector2 maximum = flat[0];
        foreach (Vector2 point in flat)
        {
            minimum = new Vector2(Math.Min(minimum.x, point.x), Math.Min(minimum.y, point.y));
            maximum = new Vector2(Math.Max(maximum.x, point.x), Math.Max(maximum.y, point.y));
        }
        Vector2 size = maximum - minimum;
        Vector3 normal = Vector3.Origin;
        foreach (int[] face in faces)
            normal += Triangulator.Normal(Array.ConvertAll(face, index => section[index]));
        normal = normal.Normalize() * (reversed ? -1 : 1);
        foreach (int[] face in faces)
        {
            SurfaceBuilder.Corner[] corners = Array.ConvertAll(face, index => new SurfaceBuilder.Corner(
                section[index], normal,
                new Vector2((flat[index].x - minimum.x) / size.x, (flat[index].y - minimum.y) / size.y)));
            if (reversed)
                Array.Reverse(corners);
            surface.Polygon(corners);
        }
    }

    private static void AddWall(
        SurfaceBuilder surface, IReadOnlyList<Vector3[]> sections, int start, int count, bool closed)
    {
        int steps = sections.Count - 1;
        Vector3[,] normals = new Vector3[count, steps];
        for (int k = 0; k < steps; ++k)
        {
            for (int i = 0; i < count; ++i)
            {
                int j = (i + 1) % count;
                Vector3 diagonal = sections[k + 1][start + j] - sections[k][start + i];
                normals[i, k] = diagonal.Cross(
                    sections[k + 1][start + i] - sections[k][start + j]).Normalize();
            }
        }
        for (int k = 0; k < steps; ++k)
        {
            double v0 = (double)k / steps;
            double v1 = (double)(k + 1) / steps;
            for (int i = 0; i < count; ++i)
            {
                int j = (i + 1) % count;
                Vector2 u = new((double)i / count, (double)(i + 1) / count);
                surface.Polygon(
                    new(sections[k][start + i], At(i, k, -1, -1), new Vector2(u.x, v0)),
                    new(sections[k][start + j], At(i, k, 1, -1), new Vector2(u.y, v0)),
                    new(sections[k + 1][start + j], At(i, k, 1, 1), new Vector2(u.y, v1)),
                    new(sections[k + 1][start + i], At(i, k, -1, 1), new Vector2(u.x, v1)));
            }
        }

        // The normal at one corner of the face (i, k): its own, and those of the faces around the corner that
        // go on smoothly.
        Vector3 At(int i, int k, int di, int dk)
        {
            Vector3 own = normals[i, k];
            int besideI = (i + di + count) % count;
            int besideK = k + dk;
            if (closed)
                besideK = (besideK + steps) % steps;
            Vector3 sum = own + Smooth(own, normals[besideI, k]);
            if (besideK >= 0 && besideK < steps)
                sum += Smooth(own, normals[i, besideK]) + Smooth(own, normals[besideI, besideK]);
            return sum.Normalize();
        }
    }

    private static Vector3 Smooth(Vector3 own, Vector3 other) =>
        own.Dot(other) > SmoothCosine ? other : Vector3.Origin;
}
