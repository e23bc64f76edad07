using System;
using System.Collections.Generic;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>Tools that change polygons.</summary>
public class PolygonModifier
{
    private PolygonModifier()
    {
    }

    /// <summary>Cuts the polygons of all meshes of a scene into triangles, in place.</summary>
    /// <param name="scene">The scene.</param>
    public static void Triangulate(Scene scene) => ForEachMesh(scene, MeshTriangulation.Apply);

    /// <summary>
    /// Makes a mesh whose polygons are cut into triangles. Vertex elements are carried over; the given mesh
    /// stays as it is.
    /// </summary>
    /// <param name="mesh">The mesh.</param>
    /// <returns>The new mesh.</returns>
    public static Mesh Triangulate(Mesh mesh)
    {
        ArgumentNullException.ThrowIfNull(mesh);
        return MeshTriangulation.Triangulated(mesh);
    }

    /// <summary>Cuts polygons into triangles.</summary>
    /// <param name="controlPoints">The points.</param>
    /// <param name="polygons">The indices of the points of each polygon.</param>
    /// <param name="generateNormals">Whether normals are wanted.</param>
    /// <param name="norOut">The normal of each triangle, of length 1; empty when none are wanted.</param>
    /// <returns>The three indices of each triangle.</returns>
    public static int[][] Triangulate(
        IList<Vector4> controlPoints, IList<int[]> polygons, bool generateNormals, out Vector3[] norOut)
    {
        int[][] triangles = Triangulate(controlPoints, polygons);
        norOut = generateNormals
            ? Array.ConvertAll(triangles, triangle => Normal(controlPoints, triangle))
            : [];
        return triangles;
    }

    /// <summary>Cuts polygons into triangles.</summary>
    /// <param name="controlPoints">The points.</param>
    /// <param name="polygons">The indices of the points of each polygon.</param>
    /// <returns>The three indices of each triangle.</returns>
    public static int[][] Triangulate(IList<Vector4> controlPoints, IList<int[]> polygons)
    {
        ArgumentNullException.ThrowIfNull(controlPoints);
        ArgumentNullException.ThrowIfNull(polygons);
        List<int[]> triangles = new();
        foreach (int[] polygon in polygons)
            Cut(controlPoints, polygon, triangles);
        return triangles.ToArray();
    }

    /// <summary>Cuts a polygon into triangles.</summary>
    /// <param name="controlPoints">The points.</param>
    /// <param name="polygon">The indices of the points of the polygon.</param>
    /// <returns>The three indices of each triangle.</returns>
    public static int[][] Triangulate(IList<Vector4> controlPoints, int[] polygon)
    {
        ArgumentNullException.ThrowIfNull(controlPoints);
        List<int[]> triangles = new();
        Cut(controlPoints, polygon, triangles);
        return triangles.ToArray();
    }

    /// <summary>Cuts the polygon of all points, in order, into triangles.</summary>
    /// <param name="controlPoints">The points.</param>
    /// <returns>The three indices of each triangle.</returns>
    public static int[][] Triangulate(IList<Vector4> controlPoints)
    {
        ArgumentNullException.ThrowIfNull(controlPoints);
        int[] all = new int[controlPoints.Count];
        for (int i = 0; i < all.Length; ++i)
            all[i] = i;
        return Triangulate(controlPoints, all);
    }

    /// <summary>Makes one mesh, in world space, of all that can become a mesh in a scene.</summary>
    /// <param name="scene">The scene, which stays as it is. What is excluded is left out.</param>
    public static Mesh MergeMesh(Scene scene)
    {
        ArgumentNullException.ThrowIfNull(scene);
        return MergeMesh(scene.RootNode);
    }

    /// <summary>
    /// Makes one mesh, in world space, of all that can become a mesh on nodes and below them.
    /// </summary>
    /// <param name="nodes">The nodes, which stay as they are. A node that is there twice counts once.</param>
    public static Mesh MergeMesh(IList<Node> nodes)
    {
        ArgumentNullException.ThrowIfNull(nodes);
        MeshMerger merger = new();
        foreach (Node node in nodes)
        {
            ArgumentNullException.ThrowIfNull(node, nameof(nodes));
            merger.Add(node);
        }
        return merger.Merge();
    }

    /// <summary>
    /// Makes one mesh, in world space, of all that can become a mesh on a node and below it.
    /// </summary>
    /// <param name="node">The node, which stays as it is.</param>
    public static Mesh MergeMesh(Node node)
    {
        ArgumentNullException.ThrowIfNull(node);
        return MergeMesh([node]);
    }

    /// <summary>
    /// Scales a scene in place by scaling control points and the places of nodes; the scales of nodes stay.
    /// It is exact when the scale is the same in all directions or no node is rotated. Bodies without control
    /// points become meshes.
    /// </summary>
    /// <param name="scene">The scene.</param>
    /// <param name="scale">The factors in x, y and z, none of them 0.</param>
    /// <returns>The scene.</returns>
    public static Scene Scale(Scene scene, Vector3 scale)
    {
        ArgumentNullException.ThrowIfNull(scene);
        CheckScale(scale);
        new SceneScaler(scale).Apply(scene.RootNode, moveNode: true);
        return scene;
    }

    /// <summary>
    /// Scales what is on a node and below it in place, see <see cref="Scale(Scene, Vector3)"/>.
    /// </summary>
    /// <param name="node">The node; its own place stays.</param>
    /// <param name="scale">The factors in x, y and z, none of them 0.</param>
    public static void Scale(Node node, Vector3 scale)
    {
        ArgumentNullException.ThrowIfNull(node);
        CheckScale(scale);
        new SceneScaler(scale).Apply(node, moveNode: false);
    }

    /// <summary>
    /// Makes texture coordinates by projecting each corner onto the side of the bounding box that its normal
    /// points to.
    /// </summary>
    /// <param name="mesh">The mesh, which stays as it is.</param>
    /// <param name="normals">The normals.</param>
    /// <returns>The coordinates, which are not yet in the mesh.</returns>
    public static VertexElementUV GenerateUV(Mesh mesh, VertexElementNormal normals)
    {
        ArgumentNullException.ThrowIfNull(mesh);
        ArgumentNullException.ThrowIfNull(normals);
        return MeshTextureMapper.Generate(mesh, normals);
    }

    /// <summary>
    /// Makes texture coordinates with the normals of the mesh, or with generated ones if it has none.
    /// </summary>
    /// <param name="mesh">The mesh, which stays as it is.</param>
    /// <returns>The coordinates, which are not yet in the mesh.</returns>
    public static VertexElementUV GenerateUV(Mesh mesh)
    {
        ArgumentNullException.ThrowIfNull(mesh);
        return GenerateUV(mesh, mesh.GetElement(VertexElementType.Normal) as VertexElementNormal
            ?? GenerateNormal(mesh));
    }

    /// <summary>Splits the meshes on a node by material. A mesh of one material is left alone.</summary>
    /// <param name="node">The node, without those below it.</param>
    /// <param name="policy">What the parts hold.</param>
    /// <param name="createChildNodes">
    /// Whether each part goes on a new child node together with its material; on the node itself otherwise.
    /// </param>
    /// <param name="removeOldMesh">Whether a mesh that was split is taken off the node.</param>
    public static void SplitMesh(Node node, SplitMeshPolicy policy, bool createChildNodes, bool removeOldMesh)
    {
        ArgumentNullException.ThrowIfNull(node);
        MeshSplitter.Split(node, policy, createChildNodes, removeOldMesh);
    }

    /// <summary>Splits all meshes of a scene by material; the parts go on new child nodes.</summary>
    /// <param name="scene">The scene.</param>
    /// <param name="policy">What the parts hold.</param>
    /// <param name="removeOldMesh">Whether a mesh that was split is taken off its node.</param>
    public static void SplitMesh(Scene scene, SplitMeshPolicy policy, bool removeOldMesh)
    {
        ArgumentNullException.ThrowIfNull(scene);
        // The list is made first, as splitting adds nodes.
        foreach (Node node in new List<Node>(NodeTree.Walk(scene.RootNode, skipExcluded: false)))
            MeshSplitter.Split(node, policy, createChildNodes: true, removeOldMesh);
    }

    /// <summary>Makes one mesh for each material of a mesh.</summary>
    /// <param name="mesh">The mesh, which stays as it is.</param>
    /// <param name="policy">What the parts hold.</param>
    /// <returns>The parts in the order of the materials' numbers.</returns>
    public static Mesh[] SplitMesh(Mesh mesh, SplitMeshPolicy policy)
    {
        ArgumentNullException.ThrowIfNull(mesh);
        return MeshSplitter.Split(mesh, policy).ConvertAll(part => part.Mesh).ToArray();
    }

    /// <summary>Adds tangents and binormals to all meshes of a scene that have texture coordinates.</summary>
    /// <param name="scene">The scene.</param>
    public static void BuildTangentBinormal(Scene scene) => ForEachMesh(scene, mesh =>
    {
        if (mesh.GetElement(VertexElementType.UV) is not null)
            MeshTangents.Build(mesh);
    });

    /// <summary>
    /// Adds tangents and binormals to a mesh, in place of those it has. Without normals, smooth ones are
    /// taken for them.
    /// </summary>
    /// <param name="mesh">The mesh.</param>
    /// <exception cref="InvalidOperationException">The mesh has no texture coordinates.</exception>
    public static void BuildTangentBinormal(Mesh mesh)
    {
        ArgumentNullException.ThrowIfNull(mesh);
        MeshTangents.Build(mesh);
    }

    /// <summary>Makes smooth normals; smoothing groups of the mesh tell where it has sharp edges.</summary>
    /// <param name="mesh">The mesh, which stays as it is.</param>
    /// <returns>The normals, which are not yet in the mesh.</returns>
    public static VertexElementNormal GenerateNormal(Mesh mesh)
    {
        ArgumentNullException.ThrowIfNull(mesh);
        return MeshNormals.Generate(mesh);
    }

    private static void Cut(IList<Vector4> controlPoints, int[] polygon, List<int[]> triangles)
    {
        ArgumentNullException.ThrowIfNull(polygon);
        Vector3[] points = Array.ConvertAll(polygon, index => index >= 0 && index < controlPoints.Count
            ? new Vector3(controlPoints[index])
            : throw new ArgumentException($"There is no control point {index}."));
        List<int> local = new();
        Triangulator.Cut(points, local);
        for (int i = 0; i < local.Count; i += 3)
            triangles.Add([polygon[local[i]], polygon[local[i + 1]], polygon[local[i + 2]]]);
    }

    private static Vector3 Normal(IList<Vector4> points, int[] triangle)
    {
        Vector3 a = new(points[triangle[0]]);
        return (new Vector3(points[triangle[1]]) - a).Cross(new Vector3(points[triangle[2]]) - a).Normalize();
    }

    private static void CheckScale(Vector3 scale)
    {
        if (scale.x == 0 || scale.y == 0 || scale.z == 0)
            throw new ArgumentException("A scale of 0 would make the scene flat.", nameof(scale));
    }

    private static void ForEachMesh(Scene scene, Action<Mesh> action)
    {
        ArgumentNullException.ThrowIfNull(scene);
        HashSet<Mesh> done = new();
        foreach (Node node in NodeTree.Walk(scene.RootNode, skipExcluded: false))
        {
            foreach (Entity entity in node.Entities)
            {
                if (entity is Mesh mesh && done.Add(mesh))
                    action(mesh);
            }
        }
    }
}
