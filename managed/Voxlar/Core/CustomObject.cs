namespace Velbor.Voxlar;

/// <summary>An object without meaning of its own, which carries properties.</summary>
public class CustomObject : VbrObject
{
    /// <summary>Makes an object with an empty name.</summary>
    public CustomObject()
    {
    }

    /// <summary>Makes an object with a name.</summary>
    public CustomObject(string name)
        : base(name)
    {
    }
}
