using System;
using System.Collections.Generic;
using System.Globalization;
using Velbor.Voxlar.Entities;
using Velbor.Voxlar.Formats.Text;

namespace Velbor.Voxlar.Formats.Obj;

/// <summary>
/// The objects and groups that entities are written under. Elements of one name are one mesh when they are
/// read, so a name that another entity has gets a number; lines and points may go under the name of the mesh
/// of their node.
/// </summary>
internal sealed class ObjGroupNames
{
    private readonly Dictionary<ObjGroup, PlacedEntity> _taken = [];

    /// <summary>The groups of an entity.</summary>
    /// <param name="item">The entity.</param>
    /// <param name="groupOfPolygon">The group of each polygon; null when there is one group only.</param>
    public ObjGroup[] Of(PlacedEntity item, out int[]? groupOfPolygon)
    {
        groupOfPolygon = null;
        if (item.Entity is Mesh mesh && mesh.PolygonCount > 0
            && mesh.GetElement(VertexElementType.PolygonGroup) is VertexElementPolygonGroup element)
            return OfPolygons(item, mesh, element, out groupOfPolygon);
        string name = item.Name;
        ObjGroup group = item.Entity.GetProperty(ObjNames.Object) is string @object
            ? new ObjGroup(NullIfEmpty(@object), NullIfEmpty(name)) : new ObjGroup(NullIfEmpty(name), null);
        return [Take(group, item)];
    }

    private ObjGroup[] OfPolygons(
        PlacedEntity item, Mesh mesh, VertexElementPolygonGroup element, out int[]? groupOfPolygon)
    {
        string[] names = mesh.GetProperty(ObjNames.Groups) as string[] ?? [];
        string[] objects = mesh.GetProperty(ObjNames.GroupObjects) as string[] ?? [];
        string? ownObject = names.Length == 0 ? NullIfEmpty(item.Name) : null;
        List<ObjGroup> groups = [];
        Dictionary<int, int> places = [];
        groupOfPolygon = new int[mesh.PolygonCount];
        for (int i = 0; i < groupOfPolygon.Length; i++)
        {
            int value = element.ValueIndex(0, 0, i);
            int number = value < 0 ? -1 : element.Data[value];
            if (!places.TryGetValue(number, out int place))
            {
                places.Add(number, place = groups.Count);
                bool isNamed = (uint)number < (uint)names.Length;
                string name = isNamed
                    ? names[number] : "group" + number.ToString(CultureInfo.InvariantCulture);
                string? told = isNamed && number < objects.Length ? NullIfEmpty(objects[number]) : ownObject;
                groups.Add(Take(new ObjGroup(told, NullIfEmpty(name)), item));
            }
            groupOfPolygon[i] = place;
        }
        return [.. groups];
    }

    private static string? NullIfEmpty(string text) => text.Trim().Length == 0 ? null : text.Trim();

    private ObjGroup Take(ObjGroup group, PlacedEntity item)
    {
        ObjGroup wanted = group;
        for (int number = 2; ; number++)
        {
            if (_taken.TryAdd(wanted, item))
                return wanted;
            PlacedEntity other = _taken[wanted];
            if (other != item && other.Node == item.Node && item.Entity is not Mesh)
                return wanted;
            string suffix = "_" + number.ToString(CultureInfo.InvariantCulture);
            wanted = group.Name is not null
                ? group with { Name = group.Name + suffix }
                : group with { Object = (group.Object ?? item.Entity.GetType().Name) + suffix };
        }
    }
}
