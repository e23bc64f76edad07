using System;
using System.Collections.Generic;
using Velbor.Voxlar.Shading;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar;

/// <summary>
/// A node of the scene graph: a transform, child nodes, and the entities that stand at this place. A node has
/// at most one parent; names need not be unique.
/// </summary>
public class Node : SceneObject
{
    // Most nodes have few of these, so each list is made when it is first asked for.
    private NodeList? _children;
    private EntityList? _entities;
    private List<Material>? _materials;
    private List<CustomObject>? _metaDatas;
    private GlobalTransform? _globalTransform;

    /// <summary>Makes a node with an empty name.</summary>
    public Node()
        : this("")
    {
    }

    /// <summary>Makes a node that holds an entity.</summary>
    /// <param name="name">The name.</param>
    /// <param name="entity">The entity; null for none.</param>
    public Node(string name, Entity? entity)
        : this(name)
    {
        if (entity is not null)
            Entities.Add(entity);
    }

    /// <summary>Makes a node with a name.</summary>
    public Node(string name)
        : base(name)
    {
    }

    /// <summary>What is known about the asset that this node stands for; null at first.</summary>
    public AssetInfo? AssetInfo { get; set; }

    /// <summary>Whether the node is shown; true at first.</summary>
    public bool Visible { get; set; } = true;

    /// <summary>The child nodes. A node that is added leaves its former parent.</summary>
    public IList<Node> ChildNodes => Children;

    /// <summary>The first entity, or null. Setting it makes that entity the only one; null removes
    /// all.</summary>
    public Entity? Entity
    {
        get => _entities is { Count: > 0 } ? _entities[0] : null;
        set
        {
            if (value is not null && _entities is { Count: 1 } && _entities[0] == value)
                return;
            _entities?.Clear();
            if (value is not null)
                Entities.Add(value);
        }
    }

    /// <summary>Whether the node and all below it are left out when the scene is written or drawn.</summary>
    public bool Excluded { get; set; }

    /// <summary>The entities; each stands in the list once.</summary>
    public IList<Entity> Entities => _entities ??= new EntityList(this);

    /// <summary>Objects with further data about the node.</summary>
    public IList<CustomObject> MetaDatas => _metaDatas ??= [];

    /// <summary>The materials of the entities; material elements of a geometry index this list.</summary>
    public IList<Material> Materials => _materials ??= [];

    /// <summary>The first material, or null. Setting it replaces the first one; null removes all.</summary>
    public Material? Material
    {
        get => _materials is { Count: > 0 } ? _materials[0] : null;
        set
        {
            if (value is null)
                _materials?.Clear();
            else if (_materials is { Count: > 0 })
                _materials[0] = value;
            else
                Materials.Add(value);
        }
    }

    /// <summary>The parent, or null. Setting it moves the node; null takes it out of the graph.</summary>
    /// <exception cref="InvalidOperationException">The new parent is this node or stands below it, or this
    /// node is the root of a scene.</exception>
    public Node? ParentNode
    {
        get => Parent;
        set
        {
            if (value == Parent)
                return;
            if (value is null)
                Parent!.ChildNodes.Remove(this);
            else
                value.ChildNodes.Add(this);
        }
    }

    /// <summary>The transform relative to the parent.</summary>
    public Transform Transform { get; } = new();

    /// <summary>The transform into the space of the scene.</summary>
    public GlobalTransform GlobalTransform => _globalTransform ??= new GlobalTransform(this);

    /// <summary>The scene in whose graph the node stands, or null.</summary>
    public override Scene? Scene => Top.OwnerScene;

    /// <summary>The parent as the child lists keep it.</summary>
    internal Node? Parent { get; set; }

    /// <summary>Whether there is any child node; asking makes no list.</summary>
    internal bool HasChildren => _children is { Count: > 0 };

    private NodeList Children => _children ??= new NodeList(this);

    internal Node Top
    {
        get
        {
            Node node = this;
            while (node.Parent is not null)
                node = node.Parent;
            return node;
        }
    }

    /// <summary>Makes a child node.</summary>
    public Node CreateChildNode() => CreateChildNode("", null, null);

    /// <summary>Makes a child node with a name.</summary>
    public Node CreateChildNode(string nodeName) => CreateChildNode(nodeName, null, null);

    /// <summary>Makes a child node that holds an entity and takes its name.</summary>
    public Node CreateChildNode(Entity? entity) => CreateChildNode(entity?.Name ?? "", entity, null);

    /// <summary>Makes a child node with a name that holds an entity.</summary>
    public Node CreateChildNode(string nodeName, Entity? entity) => CreateChildNode(nodeName, entity, null);

    /// <summary>Makes a child node with a name, an entity and a material.</summary>
    /// <param name="nodeName">The name.</param>
    /// <param name="entity">The entity; null for none.</param>
    /// <param name="material">The material; null for none.</param>
    public Node CreateChildNode(string nodeName, Entity? entity, Material? material)
    {
        Node child = new(nodeName, entity) { Material = material };
        Children.Add(child);
        return child;
    }

    /// <summary>The child at a place, counted from 0.</summary>
    /// <exception cref="ArgumentOutOfRangeException">There is no such place.</exception>
    public Node GetChild(int index) => Children[index];

    /// <summary>The first child of that name, or null.</summary>
    public Node? GetChild(string nodeName)
    {
        foreach (Node child in Children)
        {
            if (child.Name == nodeName)
                return child;
        }
        return null;
    }

    /// <summary>Moves children, entities, materials and meta data of another node to this one, behind its
    /// own.</summary>
    /// <param name="node">The other node; it stays where it is, empty.</param>
    /// <exception cref="InvalidOperationException">This node is the other one or stands below it.</exception>
    public void Merge(Node node)
    {
        ArgumentNullException.ThrowIfNull(node);
        for (Node? above = this; above is not null; above = above.Parent)
        {
            if (above == node)
                throw new InvalidOperationException($"{node} cannot be merged into itself or a node below it.");
        }
        foreach (Node child in Snapshot(node.ChildNodes))
            Children.Add(child);
        foreach (Entity entity in Snapshot(node.Entities))
            AddEntity(entity);
        node.Entities.Clear();
        foreach (Material material in node.Materials)
            Materials.Add(material);
        node.Materials.Clear();
        foreach (CustomObject data in node.MetaDatas)
            MetaDatas.Add(data);
        node.MetaDatas.Clear();
    }

    /// <summary>The matrix that takes points of this node into the space of its scene.</summary>
    /// <param name="withGeometricTransform">Whether the geometric transform of this node is included, as it
    /// is for points of its entities.</param>
    public Matrix4 EvaluateGlobalTransform(bool withGeometricTransform)
    {
        Matrix4 result = withGeometricTransform && Transform.HasGeometricTransform
            ? Transform.GeometricMatrix * Transform.TransformMatrix
            : Transform.TransformMatrix;
        for (Node? above = Parent; above is not null; above = above.Parent)
            result *= above.Transform.TransformMatrix;
        return result;
    }

    /// <summary>
    /// The box, in the space of the scene, around the entities of this node and of all nodes below it.
    /// Excluded nodes and entities are left out.
    /// </summary>
    public BoundingBox GetBoundingBox()
    {
        BoundingBox result = BoundingBox.Null;
        Stack<(Node Node, Matrix4 Global)> open = new();
        open.Push((this, EvaluateGlobalTransform(false)));
        while (open.TryPop(out (Node Node, Matrix4 Global) at))
        {
            if (at.Node.Excluded)
                continue;
            if (at.Node._entities is { Count: > 0 } entities)
            {
                Matrix4 matrix = at.Node.Transform.GeometricMatrix * at.Global;
                foreach (Entity entity in entities)
                {
                    if (!entity.Excluded)
                        result = result.Merge(entity.GetBoundingBox().Transform(matrix));
                }
            }
            if (!at.Node.HasChildren)
                continue;
            foreach (Node child in at.Node.Children)
                open.Push((child, child.Transform.TransformMatrix * at.Global));
        }
        return result;
    }

    /// <summary>Adds an entity; one that the node holds already stays where it is.</summary>
    public void AddEntity(Entity entity)
    {
        ArgumentNullException.ThrowIfNull(entity);
        _entities ??= new EntityList(this);
        if (!_entities.Holds(entity))
            _entities.Add(entity);
    }

    /// <summary>Adds a child node, which leaves its former parent.</summary>
    /// <exception cref="InvalidOperationException">The node is this one or stands above it, or is the root of
    /// a scene.
    /// </exception>
    public void AddChildNode(Node node) => Children.Add(node);

    /// <summary>The first object that a path selects, or null.</summary>
    /// <param name="path">The path; <see cref="SelectObjects"/> tells its language.</param>
    /// <exception cref="ParseException">The path does not follow its grammar.</exception>
    public object? SelectSingleObject(string path)
    {
        foreach (object found in NodeQuery.Parse(path).Run(this))
            return found;
        return null;
    }

    /// <summary>All objects that a path selects, each once.</summary>
    /// <remarks>
    /// A path is steps with "/" between them, from this node on; with a "/" in front it starts at the top of
    /// the graph. A step looks at the child nodes, entities and materials of what the step before selected,
    /// in this order; after "//" it looks at any depth, in pre-order. A step is one of
    /// <list type="bullet">
    /// <item><c>name</c> or <c>"name"</c> or <c>'name'</c>: objects of this name; quotes allow any
    /// character;</item>
    /// <item><c>*</c>: every object;</item>
    /// <item><c>.</c>: the object itself; <c>..</c>: the parent node of a node, the nodes that hold an
    /// entity;</item>
    /// </list>
    /// followed by any number of conditions, each applied to what the ones before left over:
    /// <list type="bullet">
    /// <item><c>&lt;Type&gt;</c>: objects of this class or one derived from it, such as
    /// <c>&lt;Camera&gt;</c>;</item>
    /// <item><c>[n]</c>: the object at place n, counted from 0;</item>
    /// <item><c>[@Name]</c>: objects that have the property;</item>
    /// <item><c>[@Name = value]</c>, also with !=, &lt;, &lt;=, &gt; and &gt;=: objects whose property
    /// compares so; a value is a number, true, false or a text in quotes.</item>
    /// </list>
    /// Examples: <c>//*&lt;Camera&gt;</c>, <c>/Car/Wheel[2]</c>, <c>//*[@Visible = false]</c>.
    /// </remarks>
    /// <exception cref="ParseException">The path does not follow its grammar.</exception>
    public List<object> SelectObjects(string path) => new(NodeQuery.Parse(path).Run(this));

    /// <summary>Empties the node and puts its transform back to the identity.</summary>
    internal void Reset()
    {
        _children?.Clear();
        _entities?.Clear();
        _materials?.Clear();
        _metaDatas?.Clear();
        AssetInfo = null;
        Visible = true;
        Excluded = false;
        Transform.Reset();
        ClearUserProperties();
    }

    private static T[] Snapshot<T>(IEnumerable<T> items) => [.. items];
}
