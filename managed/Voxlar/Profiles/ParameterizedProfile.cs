using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar.Profiles;

/// <summary>A profile given by a few lengths. It lies centred about the origin.</summary>
public abstract class ParameterizedProfile : Profile
{
    private protected ParameterizedProfile()
    {
    }

    /// <summary>Gives the size of the bounding rectangle in x and y.</summary>
    public abstract Vector2 GetExtent();
}
