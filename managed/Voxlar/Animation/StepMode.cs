namespace Velbor.Voxlar.Animation;

/// <summary>Which key gives the value of a constant segment.</summary>
public enum StepMode
{
    PreviousValue = 0,
    NextValue = 1,
}
