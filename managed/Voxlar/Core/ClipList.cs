using Velbor.Voxlar.Animation;

namespace Velbor.Voxlar;

/// <summary>The animation clips of a scene; each belongs to one scene at most.</summary>
internal sealed class ClipList : OwnedList<AnimationClip>
{
    private readonly Scene _owner;

    public ClipList(Scene owner) => _owner = owner;

    protected override void Entering(AnimationClip item)
    {
        item.OwnerScene?.AnimationClips.Remove(item);
        item.OwnerScene = _owner;
    }

    protected override void Left(AnimationClip item)
    {
        item.OwnerScene = null;
        if (_owner.CurrentAnimationClip == item)
            _owner.CurrentAnimationClip = null;
    }
}
