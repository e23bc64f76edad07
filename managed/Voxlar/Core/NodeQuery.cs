using System;
using System.Collections.Generic;
using System.Globalization;
using Velbor.Voxlar.Shading;
using Velbor.Voxlar.Utilities;

namespace Velbor.Voxlar;

/// <summary>A parsed path of <see cref="Node.SelectObjects"/>.</summary>
internal sealed class NodeQuery
{
    private readonly List<Step> _steps = [];
    private bool _fromTop;

    private NodeQuery()
    {
    }

    private enum StepKind
    {
        Self,
        Parent,
        Children,
    }

    /// <summary>Reads a path.</summary>
    /// <exception cref="ParseException">The path does not follow its grammar.</exception>
    public static NodeQuery Parse(string path)
    {
        ArgumentNullException.ThrowIfNull(path);
        return new Parser(path).Query();
    }

    /// <summary>Gives the selected objects, each once.</summary>
    public IEnumerable<object> Run(Node start)
    {
        IEnumerable<object> current = [_fromTop ? start.Top : start];
        foreach (Step step in _steps)
            current = Apply(step, current);
        return current;
    }

    private static IEnumerable<object> Apply(Step step, IEnumerable<object> sources)
    {
        HashSet<object> seen = new(ReferenceEqualityComparer.Instance);
        foreach (object source in sources)
        {
            IEnumerable<object> found = Select(step, source);
            foreach (Condition condition in step.Conditions)
                found = condition(found);
            foreach (object item in found)
            {
                if (seen.Add(item))
                    yield return item;
            }
        }
    }

    private static IEnumerable<object> Select(Step step, object source)
    {
        switch (step.Kind)
        {
            case StepKind.Self:
                return [source];
            case StepKind.Parent:
                return source switch
                {
                    Node { Parent: { } parent } => [parent],
                    Entity entity => entity.ParentNodes,
                    _ => [],
                };
            default:
                IEnumerable<object> all = step.AnyDepth ? Descendants(source) : Contents(source);
                return step.Name is null ? all : Named(all, step.Name);
        }
    }

    private static IEnumerable<object> Named(IEnumerable<object> items, string name)
    {
        foreach (object item in items)
        {
            if (item is INamedObject named && named.Name == name)
                yield return item;
        }
    }

    private static IEnumerable<object> Contents(object source)
    {
        if (source is not Node node)
            yield break;
        if (node.HasChildren)
        {
            foreach (Node child in node.ChildNodes)
                yield return child;
        }
        foreach (Entity entity in node.Entities)
            yield return entity;
        foreach (Material material in node.Materials)
            yield return material;
    }

    // With a stack of its own, so that the depth of a graph cannot exhaust the thread's stack.
    private static IEnumerable<object> Descendants(object source)
    {
        Stack<IEnumerator<object>> open = new();
        open.Push(Contents(source).GetEnumerator());
        while (open.TryPeek(out IEnumerator<object>? level))
        {
            if (!level.MoveNext())
            {
                open.Pop();
                continue;
            }
            yield return level.Current;
            if (level.Current is Node)
                open.Push(Contents(level.Current).GetEnumerator());
        }
    }

    private delegate IEnumerable<object> Condition(IEnumerable<object> items);

    private sealed record Step(StepKind Kind, string? Name, bool AnyDepth, List<Condition> Conditions);

    private sealed class Parser(string path)
    {
        private int _at;

        private char Next => _at < path.Length ? path[_at] : '\0';

        public NodeQuery Query()
        {
            NodeQuery query = new();
            bool anyDepth = false;
            SkipSpace();
            if (Take('/'))
            {
                query._fromTop = true;
                anyDepth = Take('/');
            }
            if (query._fromTop && !anyDepth && AtEnd())
                return query;
            while (true)
            {
                query._steps.Add(ReadStep(anyDepth));
                if (AtEnd())
                    return query;
                Expect('/');
                anyDepth = Take('/');
            }
        }

        private Step ReadStep(bool anyDepth)
        {
            SkipSpace();
            StepKind kind = StepKind.Children;
            string? name = null;
            if (Take('*'))
            {
                // Every object.
            }
            else if (Next is '"' or '\'')
            {
                name = Quoted();
            }
            else
            {
                name = Bare("/[]<>*\"'");
                if (name is "." or "..")
                {
                    if (anyDepth)
                        throw Error($"'{name}' cannot stand after '//'");
                    kind = name == "." ? StepKind.Self : StepKind.Parent;
                }
            }
            List<Condition> conditions = [];
            for (SkipSpace(); Next is '[' or '<'; SkipSpace())
                conditions.Add(Take('<') ? TypeCondition() : ReadCondition());
            return new Step(kind, name, anyDepth, conditions);
        }

        private Condition TypeCondition()
        {
            string type = Bare("<>[]/");
            Expect('>');
            return items => Where(items, item => HasType(item, type));
        }

        private Condition ReadCondition()
        {
            Expect('[');
            SkipSpace();
            if (!Take('@'))
            {
                string text = Bare("[]");
                if (!int.TryParse(text, NumberStyles.None, CultureInfo.InvariantCulture, out int place))
                    throw Error($"'{text}' is neither a place nor a property");
                Expect(']');
                return items => At(items, place);
            }
            string name = Next is '"' or '\'' ? Quoted() : Bare("[]=!<>");
            SkipSpace();
            if (Take(']'))
                return items => Where(items, item => Find(item, name) is not null);
            string comparison = Comparison();
            SkipSpace();
            object value = Value();
            SkipSpace();
            Expect(']');
            return items => Where(
                items, item => Find(item, name) is { } found && Compare(found.Value, comparison, value));
        }

        private string Comparison()
        {
            foreach (string candidate in new[] { "!=", "<=", ">=", "=", "<", ">" })
            {
                if (string.CompareOrdinal(path, _at, candidate, 0, candidate.Length) == 0)
                {
                    _at += candidate.Length;
                    return candidate;
                }
            }
            throw Error("a comparison is missing");
        }

        private object Value()
        {
            if (Next is '"' or '\'')
                return Quoted();
            string text = Bare("[]");
            if (text is "true" or "false")
                return text == "true";
            return double.TryParse(text, NumberStyles.Float, CultureInfo.InvariantCulture, out double number)
                ? number
                : throw Error($"'{text}' is no value; a text needs quotes");
        }

        private string Quoted()
        {
            char quote = path[_at++];
            int end = path.IndexOf(quote, _at);
            if (end < 0)
                throw Error("a closing quote is missing");
            string text = path[_at..end];
            _at = end + 1;
            return text;
        }

        private string Bare(string stops)
        {
            int start = _at;
            while (_at < path.Length && !stops.Contains(path[_at]))
                _at++;
            string text = path[start.._at].Trim();
            return text.Length > 0 ? text : throw Error("a name is missing");
        }

        private bool AtEnd()
        {
            SkipSpace();
            return _at == path.Length;
        }

        private void SkipSpace()
        {
            while (_at < path.Length && char.IsWhiteSpace(path[_at]))
                _at++;
        }

        private bool Take(char c)
        {
            if (_at >= path.Length || path[_at] != c)
                return false;
            _at++;
            return true;
        }

        private void Expect(char c)
        {
            if (!Take(c))
                throw Error($"'{c}' is missing");
        }

        private ParseException Error(string reason) => new($"Path '{path}', place {_at}: {reason}.");
    }

    private static IEnumerable<object> Where(IEnumerable<object> items, Predicate<object> test)
    {
        foreach (object item in items)
        {
            if (test(item))
                yield return item;
        }
    }

    private static IEnumerable<object> At(IEnumerable<object> items, int place)
    {
        foreach (object item in items)
        {
            if (place-- == 0)
            {
                yield return item;
                yield break;
            }
        }
    }

    private static bool HasType(object item, string name)
    {
        for (Type? type = item.GetType(); type is not null; type = type.BaseType)
        {
            if (type.Name == name)
                return true;
        }
        return false;
    }

    private static Property? Find(object item, string name) => (item as VbrObject)?.FindProperty(name);

    private static bool Compare(object? left, string comparison, object right)
    {
        int? order = (left, right) switch
        {
            (bool a, bool b) => a.CompareTo(b),
            (string a, string b) => string.CompareOrdinal(a, b),
            (Enum a, string b) => string.CompareOrdinal(a.ToString(), b),
            (bool or string or null, _) => null,
            (IConvertible a, double b) => a.ToDouble(CultureInfo.InvariantCulture).CompareTo(b),
            _ => null,
        };
        // What cannot be compared is different, and neither less nor greater.
        return comparison switch
        {
            "=" => order == 0,
            "!=" => order != 0,
            "<" => order < 0,
            "<=" => order <= 0,
            ">" => order > 0,
            _ => order >= 0,
        };
    }
}
