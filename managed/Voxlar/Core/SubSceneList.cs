using System;

namespace Velbor.Voxlar;

/// <summary>The scenes inside a scene; each stands in one scene at most, and in no circle.</summary>
internal sealed class SubSceneList : OwnedList<Scene>
{
    private readonly Scene _owner;

    public SubSceneList(Scene owner) => _owner = owner;

    protected override void Entering(Scene item)
    {
        for (Scene? above = _owner; above is not null; above = above.OwnerScene)
        {
            if (above == item)
                throw new InvalidOperationException("A scene cannot stand inside itself.");
        }
        item.OwnerScene?.SubScenes.Remove(item);
        item.OwnerScene = _owner;
    }

    protected override void Left(Scene item) => item.OwnerScene = null;
}
