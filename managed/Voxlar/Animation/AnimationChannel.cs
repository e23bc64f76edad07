using System;
using System.Collections;
using System.Collections.Generic;
using System.Collections.ObjectModel;

namespace Velbor.Voxlar.Animation;

/// <summary>
/// A component of an animated property, such as the x of a translation, and the sequences that drive it.
/// </summary>
public class AnimationChannel : IEnumerable<KeyframeSequence>
{
    private readonly SequenceList _sequences;

    internal AnimationChannel(BindPoint owner, string name, Type componentType, object? defaultValue)
    {
        _sequences = new SequenceList(owner);
        Name = name;
        ComponentType = componentType;
        DefaultValue = defaultValue;
    }

    /// <summary>The type of the component's values.</summary>
    public Type ComponentType { get; }

    /// <summary>The name of the channel, unique in its bind point.</summary>
    public string Name { get; }

    /// <summary>The value where no sequence gives one.</summary>
    public object? DefaultValue { get; set; }

    /// <summary>The sequences. A sequence added here is bound to the bind point of the channel.</summary>
    public IList<KeyframeSequence> KeyframeSequences => _sequences;

    /// <summary>Adds a sequence; one that is there already is left alone.</summary>
    /// <param name="sequence">The sequence.</param>
    public void AddKeyframeSequence(KeyframeSequence sequence)
    {
        ArgumentNullException.ThrowIfNull(sequence);
        if (!_sequences.Contains(sequence))
        {
            _sequences.Add(sequence);
        }
    }

    IEnumerator<KeyframeSequence> IEnumerable<KeyframeSequence>.GetEnumerator() => _sequences.GetEnumerator();

    IEnumerator IEnumerable.GetEnumerator() => _sequences.GetEnumerator();

    private sealed class SequenceList(BindPoint owner) : Collection<KeyframeSequence>
    {
        protected override void InsertItem(int index, KeyframeSequence item)
        {
            ArgumentNullException.ThrowIfNull(item);
            base.InsertItem(index, item);
            item.BindPoint = owner;
        }

        protected override void SetItem(int index, KeyframeSequence item)
        {
            ArgumentNullException.ThrowIfNull(item);
            Items[index].BindPoint = null;
            base.SetItem(index, item);
            item.BindPoint = owner;
        }

        protected override void RemoveItem(int index)
        {
            Items[index].BindPoint = null;
            base.RemoveItem(index);
        }

        protected override void ClearItems()
        {
            foreach (KeyframeSequence sequence in Items)
            {
                sequence.BindPoint = null;
            }
            base.ClearItems();
        }
    }
}
