using System;
using Velbor.Voxlar.Render;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>Points without a surface.</summary>
public class PointCloud : Geometry
{
    private static readonly EntityRendererKey RendererKey = new("PointCloud");

    /// <summary>Makes a cloud without points.</summary>
    /// <param name="name">Its name.</param>
    public PointCloud(string name)
        : base(name)
    {
    }

    /// <summary>Makes a cloud without points and without a name.</summary>
    public PointCloud()
        : this("")
    {
    }

    /// <summary>
    /// Makes a cloud of the control points of a geometry, with the elements that belong to these.
    /// </summary>
    /// <param name="g">The geometry.</param>
    public static PointCloud FromGeometry(Geometry g)
    {
        ArgumentNullException.ThrowIfNull(g);
        PointCloud cloud = new(g.Name);
        cloud.ControlPointList.AddRange(g.ControlPointList);
        foreach (VertexElement element in g.VertexElements)
        {
            if (element.MappingMode is MappingMode.ControlPoint or MappingMode.AllSame)
                cloud.VertexElements.Add(element.Clone());
        }
        return cloud;
    }

    /// <summary>
    /// Makes a cloud of points spread evenly over the surface of a mesh; the same mesh gives the same points.
    /// A geometry without a surface gives its control points.
    /// </summary>
    /// <param name="g">The geometry.</param>
    /// <param name="density">The number of points for each unit of area, at least 1.</param>
    /// <exception cref="ArgumentOutOfRangeException">The density is below 1, or more than 100 million points would
    /// be made.</exception>
    public static PointCloud FromGeometry(Geometry g, int density)
    {
        ArgumentNullException.ThrowIfNull(g);
        ArgumentOutOfRangeException.ThrowIfLessThan(density, 1);
        Mesh? mesh = g is IMeshConvertible convertible ? convertible.ToMesh() : null;
        if (mesh is null)
            return FromGeometry(g);
        PointCloud cloud = new(g.Name);
        SurfaceSampler.Sample(mesh, density, point => cloud.ControlPointList.Add(new Vector4(point, 1)));
        return cloud;
    }

    /// <inheritdoc/>
    public override EntityRendererKey GetEntityRendererKey() => RendererKey;
}
