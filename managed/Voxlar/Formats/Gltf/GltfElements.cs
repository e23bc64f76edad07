using System;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Formats.Gltf;

/// <summary>Vertex elements that stand for vertex attributes carry the attribute's name.</summary>
internal static class GltfElements
{
    internal static T Named<T>(T element, string semantic)
        where T : VertexElement
    {
        element.Name = semantic;
        return element;
    }

    internal static VertexElement? FindNamed(Geometry geometry, string semantic)
    {
        foreach (VertexElement element in geometry.VertexElements)
        {
            if (element.Name == semantic)
                return element;
        }
        return null;
    }

    /// <summary>Replaces the points and their values by those that the indices choose.</summary>
    internal static void Gather(Geometry geometry, int[] indices)
    {
        int count = geometry.ControlPointList.Count;
        Vector4[] points = Array.ConvertAll(indices, index => geometry.ControlPointList[index]);
        geometry.ControlPointList.Clear();
        geometry.ControlPointList.AddRange(points);
        foreach (VertexElement element in geometry.VertexElements)
        {
            if (element is VertexElementVector4 values)
                values.SetData(Array.ConvertAll(indices, index => values.DataList[index]));
            else if (element is VertexElementUserData { Data: Array data } user)
                user.Data = Gather(data, indices, data.Length / count);
        }
    }

    private static Array Gather(Array data, int[] indices, int components)
    {
        Array result = Array.CreateInstance(data.GetType().GetElementType()!, indices.Length * components);
        for (int i = 0; i < indices.Length; i++)
            Array.Copy(data, indices[i] * components, result, i * components, components);
        return result;
    }
}
