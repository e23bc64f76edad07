using System;
using System.Collections.Generic;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Formats.Gltf;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Text;

/// <summary>
/// A mesh, point cloud or line at its place in the scene, for formats that have no scene graph.
/// </summary>
internal sealed class PlacedEntity
{
    private readonly bool _isInPlace;
    private readonly Matrix4 _points;
    private readonly Matrix4 _normals;

    private PlacedEntity(Node node, Entity entity, Matrix4 transform)
    {
        Node = node;
        Entity = entity;
        _isInPlace = transform == Matrix4.Identity;
        _points = transform;
        double determinant = transform.Determinant;
        IsMirrored = determinant < 0;
        // A transform that flattens has no inverse; normals then go the way of the points.
        _normals = _isInPlace || determinant == 0 ? transform : transform.Inverse().Transpose();
    }

    /// <summary>The node that shows the entity.</summary>
    public Node Node { get; }

    /// <summary>A <see cref="Mesh"/>, <see cref="PointCloud"/> or <see cref="Line"/>.</summary>
    public Entity Entity { get; }

    /// <summary>
    /// Whether the transform turns the space inside out, so that polygons are to be turned round.
    /// </summary>
    public bool IsMirrored { get; }

    /// <summary>The name of the entity, or that of its node where it has none.</summary>
    public string Name => Entity.Name.Length > 0 ? Entity.Name : Node.Name;

    /// <summary>The control points of the entity, in its own space.</summary>
    public List<Vector4> ControlPoints =>
        Entity is Line line ? line.ControlPoints : ((Geometry)Entity).ControlPointList;

    /// <summary>A control point in the space of the scene; w stays as it is.</summary>
    public Vector4 Point(Vector4 point) =>
        _isInPlace ? point : new Vector4(new Vector3(point.x, point.y, point.z) * _points, point.w);

    /// <summary>A normal in the space of the scene.</summary>
    public Vector3 Normal(Vector4 normal)
    {
        if (_isInPlace)
            return new Vector3(normal.x, normal.y, normal.z);
        Vector4 turned = new Vector4(normal.x, normal.y, normal.z, 0) * _normals;
        double length = Math.Sqrt(turned.x * turned.x + turned.y * turned.y + turned.z * turned.z);
        // What mirrors turns the corners round as well, so that the surface keeps its outside.
        return length == 0 ? default : new Vector3(turned.x / length, turned.y / length, turned.z / length);
    }

    /// <summary>
    /// The place of a corner of a polygon in the order in which corners are written: turned round, from the
    /// same first one, where the transform mirrors.
    /// </summary>
    public int CornerAt(int start, int size, int k) => IsMirrored && k > 0 ? start + size - k : start + k;

    /// <summary>
    /// What there is to write. Excluded nodes and entities are left out, and so are cameras, lights and
    /// skeletons, which have no shape; bodies are turned into meshes and curves into polylines.
    /// </summary>
    /// <param name="scene">The scene.</param>
    /// <param name="transform">What is done to all points of the scene.</param>
    /// <param name="context">For failure reports.</param>
    /// <exception cref="ExportException">An entity has a shape that can be turned into none of the
    /// three.</exception>
    public static List<PlacedEntity> Of(Scene scene, Matrix4 transform, WriteContext context)
    {
        List<PlacedEntity> result = [];
        Stack<Node> open = new([scene.RootNode]);
        while (open.TryPop(out Node? node))
        {
            if (node.Excluded)
                continue;
            foreach (Entity source in node.Entities)
            {
                if (!source.Excluded && Convert(source, context) is { } entity)
                {
                    Matrix4 global = node.EvaluateGlobalTransform(true);
                    result.Add(new PlacedEntity(node, entity, global * transform));
                }
            }
            for (int i = node.ChildNodes.Count - 1; i >= 0; i--)
                open.Push(node.ChildNodes[i]);
        }
        return result;
    }

    /// <summary>The exchange of the y and the z axis, or nothing.</summary>
    public static Matrix4 Flip(bool exchange) =>
        exchange ? new Matrix4(1, 0, 0, 0, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 1) : Matrix4.Identity;

    private static Entity? Convert(Entity source, WriteContext context)
    {
        switch (source)
        {
            case Camera or Light or Skeleton:
                return null;
            case Mesh or PointCloud or Line:
                return source;
            case IMeshConvertible convertible:
                return Named(convertible.ToMesh(), source);
            case TriMesh triangles:
                return Named(GltfTriMesh.ToMesh(triangles), source);
            case Curve curve:
                return Named(Line.FromPoints([.. curve.Tessellate()]), source);
            default:
                if (source.GetType() == typeof(Geometry))
                    return PointCloud.FromGeometry((Geometry)source);
                throw context.Error(
                    $"{context.Format.Name} has no form for a {source.GetType().Name} ('{source.Name}')");
        }
    }

    private static Entity Named(Entity made, Entity source)
    {
        made.Name = source.Name;
        return made;
    }
}
