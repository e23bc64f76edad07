namespace Velbor.Voxlar;

/// <summary>The base of the objects that belong to a scene.</summary>
public abstract class SceneObject : VbrObject
{
    /// <summary>Makes an object that belongs to no scene yet.</summary>
    protected SceneObject(string name)
        : base(name)
    {
    }

    /// <summary>The scene that the object belongs to, or null.</summary>
    public virtual Scene? Scene => OwnerScene;

    /// <summary>The scene that holds this object itself, set by the scene's lists.</summary>
    internal Scene? OwnerScene { get; set; }
}
