namespace Velbor.Voxlar.Entities;

/// <summary>How the ends of a NURBS direction meet.</summary>
public enum NurbsType
{
    Open = 0,
    Closed = 1,
    Periodic = 2,
}
