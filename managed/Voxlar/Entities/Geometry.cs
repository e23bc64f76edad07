using System;
using System.Collections.Generic;
using System.Collections.ObjectModel;
using Velbor.Voxlar.Deformers;
using Velbor.Voxlar.Render;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Entities;

/// <summary>An entity made of control points, with vertex elements that carry further values.</summary>
public class Geometry : Entity
{
    private static readonly EntityRendererKey RendererKey = new("Geometry");

    private readonly List<Vector4> _controlPoints = new();
    private readonly DeformerList _deformers;
    private readonly ElementList _elements = new();

    /// <summary>Makes a geometry without points.</summary>
    /// <param name="name">Its name.</param>
    public Geometry(string name)
        : base(name)
    {
        _deformers = new DeformerList(this);
    }

    /// <summary>Whether the geometry is drawn; true at first.</summary>
    public bool Visible { get; set; } = true;

    /// <summary>
    /// The deformers. A deformer belongs to one geometry: adding it here takes it away from the one it was on
    /// before.
    /// </summary>
    public ICollection<Deformer> Deformers => _deformers;

    /// <summary>The control points; w is 1, or the weight where the geometry is rational.</summary>
    public IList<Vector4> ControlPoints => _controlPoints;

    /// <summary>Whether the geometry throws shadows; true at first.</summary>
    public bool CastShadows { get; set; } = true;

    /// <summary>Whether shadows fall on the geometry; true at first.</summary>
    public bool ReceiveShadows { get; set; } = true;

    /// <summary>The vertex elements.</summary>
    public IList<VertexElement> VertexElements => _elements;

    internal List<Vector4> ControlPointList => _controlPoints;

    /// <summary>Makes a vertex element with the modes that are usual for its kind, and adds it.</summary>
    /// <param name="type">The kind; a UV element is made for diffuse textures.</param>
    public VertexElement CreateElement(VertexElementType type)
    {
        VertexElement element = VertexElementFactory.Create(type);
        _elements.Add(element);
        return element;
    }

    /// <summary>Makes a vertex element and adds it.</summary>
    /// <param name="type">The kind; a UV element is made for diffuse textures.</param>
    /// <param name="mappingMode">What one value belongs to.</param>
    /// <param name="referenceMode">How values are found.</param>
    public VertexElement CreateElement(
        VertexElementType type, MappingMode mappingMode, ReferenceMode referenceMode)
    {
        VertexElement element = VertexElementFactory.Create(type);
        element.MappingMode = mappingMode;
        element.ReferenceMode = referenceMode;
        _elements.Add(element);
        return element;
    }

    /// <summary>Makes texture coordinates, one for each control point, and adds them.</summary>
    /// <param name="uvMapping">The kind of texture they are for.</param>
    public VertexElementUV CreateElementUV(TextureMapping uvMapping) =>
        CreateElementUV(uvMapping, MappingMode.ControlPoint, ReferenceMode.Direct);

    /// <summary>Makes texture coordinates and adds them.</summary>
    /// <param name="uvMapping">The kind of texture they are for.</param>
    /// <param name="mappingMode">What one value belongs to.</param>
    /// <param name="referenceMode">How values are found.</param>
    public VertexElementUV CreateElementUV(
        TextureMapping uvMapping, MappingMode mappingMode, ReferenceMode referenceMode)
    {
        VertexElementUV element = new(uvMapping) { MappingMode = mappingMode, ReferenceMode = referenceMode };
        _elements.Add(element);
        return element;
    }

    /// <summary>Gives the first vertex element of a kind, or null.</summary>
    /// <param name="type">The kind.</param>
    public VertexElement? GetElement(VertexElementType type)
    {
        foreach (VertexElement element in _elements)
        {
            if (element.VertexElementType == type)
                return element;
        }
        return null;
    }

    /// <summary>Gives the texture coordinates for a kind of texture, or null.</summary>
    /// <param name="textureMapping">The kind of texture.</param>
    public VertexElementUV? GetVertexElementOfUV(TextureMapping textureMapping)
    {
        foreach (VertexElement element in _elements)
        {
            if (element is VertexElementUV uv && uv.TextureMapping == textureMapping)
                return uv;
        }
        return null;
    }

    /// <summary>Adds a vertex element; one that is there already is left alone.</summary>
    /// <param name="element">The element.</param>
    public void AddElement(VertexElement element)
    {
        if (!_elements.Contains(element))
            _elements.Add(element);
    }

    /// <inheritdoc/>
    public override EntityRendererKey GetEntityRendererKey() => RendererKey;

    /// <summary>The box around the control points.</summary>
    public override BoundingBox GetBoundingBox()
    {
        if (_controlPoints.Count == 0)
            return BoundingBox.Null;
        Vector3 minimum = new(_controlPoints[0]);
        Vector3 maximum = minimum;
        foreach (Vector4 point in _controlPoints)
        {
            Vector3 p = new(point);
            minimum = Vector3.Min(minimum, p);
            maximum = Vector3.Max(maximum, p);
        }
        return new BoundingBox(minimum, maximum);
    }

    private sealed class ElementList : Collection<VertexElement>
    {
        protected override void InsertItem(int index, VertexElement item)
        {
            ArgumentNullException.ThrowIfNull(item);
            base.InsertItem(index, item);
        }

        protected override void SetItem(int index, VertexElement item)
        {
            ArgumentNullException.ThrowIfNull(item);
            base.SetItem(index, item);
        }
    }

    private sealed class DeformerList(Geometry owner) : Collection<Deformer>
    {
        protected override void InsertItem(int index, Deformer item)
        {
            ArgumentNullException.ThrowIfNull(item);
            if (item.Owner == owner)
                throw new ArgumentException("The geometry has this deformer already.", nameof(item));
            item.Owner?.Deformers.Remove(item);
            base.InsertItem(index, item);
            item.Owner = owner;
        }

        protected override void SetItem(int index, Deformer item)
        {
            RemoveItem(index);
            InsertItem(index, item);
        }

        protected override void RemoveItem(int index)
        {
            Items[index].Owner = null;
            base.RemoveItem(index);
        }

        protected override void ClearItems()
        {
            foreach (Deformer deformer in Items)
                deformer.Owner = null;
            base.ClearItems();
        }
    }
}
