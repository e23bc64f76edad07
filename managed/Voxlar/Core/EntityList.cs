namespace Velbor.Voxlar;

/// <summary>The entities of a node; each of them knows the node as long as it stands here.</summary>
internal sealed class EntityList : OwnedList<Entity>
{
    private readonly Node _owner;

    public EntityList(Node owner) => _owner = owner;

    // A node may hold many entities and an entity may stand in many nodes; the shorter list is searched.
    public override bool Holds(Entity item) =>
        Count < item.Holders.Count ? Contains(item) : item.Holders.Contains(_owner);

    protected override void Entering(Entity item) => item.Holders.Add(_owner);

    protected override void Left(Entity item) => item.Holders.Remove(_owner);
}
