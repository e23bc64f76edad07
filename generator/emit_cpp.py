"""Writes the native families: type hosts, converters, members, type objects and the tables of each module."""

from __future__ import annotations

from pathlib import Path

from generator import entry_points
from generator.cpp_forms import Forms
from generator.entry_points import EntryPoint
from generator.model import (
    Catalogue,
    EnumType,
    Kind,
    Method,
    Module,
    Overload,
    Property,
    StaticField,
    TypeRef,
    WrappedType,
)
from generator.writer import write

HEADER = "// Generated from the catalogue. Do not edit.\n"

# The tags of the module builders; they only make native names unique.
MODULE_TAGS = {
    "voxlar": "1A881341",
    "animation": "125A0692",
    "deformers": "17B07203",
    "entities": "81369BA2",
    "formats": "D4ABE66F",
    "profiles": "B4B6D298",
    "render": "961AB3D2",
    "shading": "CAFA0E85",
    "utilities": "0A2EC8A4",
}


def emit(catalogue: Catalogue, _: Path, out: Path) -> None:
    """Writes cpp/types.h and one cpp/<module>.cpp a module."""
    forms = Forms(catalogue)
    write(out / "cpp" / "types.h", _types_header(catalogue))
    for module in catalogue.modules:
        write(out / "cpp" / f"{module.short}.cpp", _ModuleWriter(catalogue, forms, module).text())


def builder_name(module: Module) -> str:
    return f"wrpPy_mlit_{MODULE_TAGS[module.short]}_{module.short}"


def _types_header(catalogue: Catalogue) -> str:
    lines = [
        HEADER,
        "#pragma once\n",
        '#include "marshal/records.h"',
        '#include "startup/cpython.h"\n',
        "#include <string>\n",
        "// Every wrapped type: its type object, its converters and its validity checks.\n",
    ]
    for module in catalogue.modules:
        lines.append(f"// {module.name}\n")
        for enum in module.enums:
            value = Forms.enum_value(enum)
            lines.append(f"extern PyTypeObject* wrpPy_tyds_{enum.native};")
            lines.append(f"int wrpPy_conv_py_to_clr_{enum.native}(PyObject* value, {value}* out);")
            lines.append(f"PyObject* wrpPy_conv_clr_to_py_{enum.native}({value} value);")
            lines.append(f"bool wrpPy_uafn_{enum.native}_invalidate();")
        for wrapped in module.types:
            native = wrapped.native
            lines.append(f"extern PyTypeObject wrpPy_tyds_{native};")
            lines.append(f"bool wrpPy_uafn_{native}_invalidate();")
            lines.append(f"bool wrpPy_bltp_{native}_is_not_valid(std::string& message);")
            if wrapped.kind == "holder":
                continue
            target = "VariantArg*" if wrapped.is_struct or wrapped.is_interface else "void**"
            source = "const PyObjectOutArg& out" if wrapped.is_interface else "void* handle"
            lines.append(f"int wrpPy_conv_py_to_clr_{native}(PyObject* value, {target} out);")
            lines.append(f"PyObject* wrpPy_conv_clr_to_py_{native}({source});")
        lines.append("")
    for module in catalogue.modules:
        lines.append(f"PyObject* {builder_name(module)}();")
    return "\n".join(lines) + "\n"


def _indent(lines: list[str], width: int = 4) -> list[str]:
    return [" " * width + line if line else line for line in lines]


def _host_class(name: str, managed_class: str, entries: list[EntryPoint]) -> list[str]:
    """The type host: one list gives the names, the slots and the forwarders."""
    lines = [
        f"class {name} final : public SlottedHost<{len(entries)}>, public SingleHost<{name}> {{",
        "public:",
        f'    {name}() : SlottedHost("{managed_class}", names) {{}}',
    ]
    for index, entry in enumerate(entries):
        parameters = ", ".join(f"{kind} a{i}" for i, kind in enumerate(entry.arguments))
        arguments = ", ".join(f"a{i}" for i in range(len(entry.arguments)))
        types = ", ".join(entry.arguments)
        lines.append(f"    {entry.result} {entry.name}({parameters}) const {{")
        lines.append(f"        return reinterpret_cast<{entry.result} (*)({types})>(slots[{index}])({arguments});")
        lines.append("    }")
    lines += [
        "",
        "private:",
        "    static constexpr const char* names[] = {",
        *(f'        "{entry.name}",' for entry in entries),
        "    };",
        "};",
        "",
    ]
    return lines


class _ModuleWriter:
    """Writes one module's file."""

    def __init__(self, catalogue: Catalogue, forms: Forms, module: Module) -> None:
        self.catalogue = catalogue
        self.forms = forms
        self.module = module
        self.lines: list[str] = []

    def text(self) -> str:
        add = self.lines.append
        add(HEADER)
        for header in (
            "collections/interop_converters.h", "collections/interop_wrappers.h", "exchange/host_base.h", "generated/arguments.h", "generated/dispatch.h",
            "generated/enum_family.h", "generated/indexers.h", "generated/module_tree.h", "generics.h",
            "marshal/bytes.h", "marshal/byref.h", "marshal/datetime.h", "marshal/nullable.h", "marshal/numbers.h",
            "marshal/records.h", "marshal/scope_guards.h", "marshal/strings.h", "marshal/version_tuple.h",
            "streams/stream_wrapper.h", "types.h", "wrappers/capsules.h", "wrappers/casts.h",
            "wrappers/clr_object.h", "wrappers/converters.h", "wrappers/results.h", "wrappers/variant.h",
            "wrappers/type_object.h",
        ):  # fmt: skip
            add(f'#include "{header}"')
        add("")
        for enum in self.module.enums:
            self.lines += _EnumWriter(enum).lines()
        # A host is used by the types that derive from an interface, so all hosts come first.
        add("namespace {\n")
        for wrapped in self.module.types:
            entries = list(entry_points.of_type(self.forms, wrapped))
            self.lines += _host_class(f"PyHost_cs_{wrapped.native}", wrapped.managed_class, entries)
        add("}  // namespace\n")
        for wrapped in self._interfaces_first():
            self.lines += _TypeWriter(self.catalogue, self.forms, wrapped).lines()
        self._builder()
        return "\n".join(self.lines) + "\n"

    def _interfaces_first(self) -> list[WrappedType]:
        """Base interfaces before those that list their functions; everything else in its order."""
        ordered: list[WrappedType] = []

        def place(wrapped: WrappedType) -> None:
            if wrapped.is_interface and wrapped.base is not None and wrapped.base.module is self.module:
                place(wrapped.base)
            if wrapped not in ordered:
                ordered.append(wrapped)

        for wrapped in self.module.types:
            place(wrapped)
        return ordered

    def _builder(self) -> None:
        add = self.lines.append
        module = self.module
        tag = f"{MODULE_TAGS[module.short]}_{module.short}"
        add(f"// The module {module.name}\n")
        add("namespace {\n")
        types = [t for t in module.types if t.outer_name is None] + [t for t in module.types if t.outer_name]
        for wrapped in types:
            if names := self._interface_objects(wrapped):
                add(f"PyTypeObject* const interfaces_of_{wrapped.name}[] = {{{', '.join('&' + n for n in names)}}};")
        add("\nconst EnumRow enum_rows[] = {")
        for enum in module.enums:
            add(f'    {{"{enum.name}", "{module.name}.{enum.name}", wrpPy_eypi_{enum.native}}},')
        add("    {nullptr, nullptr, nullptr},")
        add("};\n")
        add("const TypeRow type_rows[] = {")
        for wrapped in types:
            names = self._interface_objects(wrapped)
            interfaces = f"interfaces_of_{wrapped.name}, {len(names)}" if names else "nullptr, 0"
            statics = f"wrpPy_sgsf_{wrapped.native}" if wrapped.statics else "nullptr"
            outer = f"&wrpPy_tyds_{self.catalogue.types[wrapped.outer_name].native}" if wrapped.outer_name else "nullptr"
            flag = "true" if wrapped.is_struct else "false"
            add(
                f'    {{&wrpPy_tyds_{wrapped.native}, u"{wrapped.managed_type}", "{wrapped.name}", {flag}, {interfaces}, '
                f"{statics}, {outer}}},"
            )
        add("    {nullptr, nullptr, nullptr, false, nullptr, 0, nullptr, nullptr},")
        add("};\n")
        is_root = module is self.catalogue.modules[0]
        if is_root:
            add("const SubmoduleRow submodule_rows[] = {")
            for sub in self.catalogue.modules[1:]:
                add(f'    {{"{sub.short}", "{sub.name}", {builder_name(sub)}}},')
            add("    {nullptr, nullptr, nullptr},")
            add("};\n")
        add("}  // namespace\n")
        if not is_root:
            add(f"static PyMethodDef wrpPy_mlmd_{tag}[] = {{{{nullptr, nullptr, 0, nullptr}}}};\n")
            add(f"static PyModuleDef wrpPy_mlds_{tag} =")
            add(f'    fn_make_module_definition("{module.name}", wrpPy_mlmd_{tag});\n')
        submodules = "submodule_rows" if is_root else "nullptr"
        definition = "wrpPy_mlds_1A881341_voxlar" if is_root else f"wrpPy_mlds_{tag}"
        add(f"PyObject* {builder_name(module)}() {{")
        add(f"    return fn_build_module({{&{definition}, {submodules}, enum_rows, type_rows}});")
        add("}")

    def _interface_objects(self, wrapped: WrappedType) -> list[str]:
        """The type objects of both interface sets, in argument order."""
        names = [f"wrpPy_tyds_{self.catalogue.types[name].native}" for name in wrapped.interfaces]
        if wrapped.is_interface and wrapped.base is not None:
            names.append(f"wrpPy_tyds_{wrapped.base.native}")
        if wrapped.iterable:
            names.append("wrpPye_tyds_IterableWrapper")
        if wrapped.disposable:
            names.append("wrpPye_tyds_IDisposableWrapper")
        return names


class _EnumWriter:
    """Writes what one enum needs: its host, its members, its built-ins, its converters."""

    def __init__(self, enum: EnumType) -> None:
        self.enum = enum

    def lines(self) -> list[str]:
        enum = self.enum
        native = enum.native
        value = Forms.enum_value(enum)
        host = f"PyHost_cs_{native}"
        members = [f'    {{"{name}", {number}}},' for name, number in enum.members]
        flags = "true" if enum.flags else "false"
        kind = "flags" if enum.byte else "enum"
        casts = f"EnumCasts<{host}, {value}, wrpPy_conv_clr_to_py_{native}, wrpPy_uafn_{native}_invalidate>"
        return [
            f"// {enum.name} " + "-" * (104 - len(enum.name)) + "\n",
            "namespace {\n",
            *_host_class(host, enum.managed_class, list(entry_points.of_enum(enum))),
            f"constexpr EnumMember wrpPy_members_{native}[] = {{",
            *members,
            "};\n",
            "}  // namespace\n",
            f"PyTypeObject* wrpPy_tyds_{native} = nullptr;\n",
            f"bool wrpPy_uafn_{native}_invalidate() {{",
            f"    static const PyHostState state = fn_aggregate_host_state({host}::get_instance(), {{}});",
            "    return state.is_not_valid && fn_report_host_state(state);",
            "}\n",
            f"int wrpPy_conv_py_to_clr_{native}(PyObject* value, {value}* out) {{",
            f'    return fn_conv_py_to_clr_{kind}(value, out, wrpPy_tyds_{native}, "{enum.name}");',
            "}\n",
            f"PyObject* wrpPy_conv_clr_to_py_{native}({value} value) {{",
            f"    return fn_conv_clr_{kind}_to_py(value, wrpPy_tyds_{native});",
            "}\n",
            f"static PyObject* wrpPy_eypi_{native}() {{",
            f"    return fn_build_enum(&wrpPy_tyds_{native}, \"{enum.name}\", wrpPy_members_{native}, "
            f"std::size(wrpPy_members_{native}), {flags}, EnumBuiltins<{casts}>::rows());",
            "}\n",
        ]


class _TypeWriter:
    """Writes one class, struct, interface or holder."""

    def __init__(self, catalogue: Catalogue, forms: Forms, wrapped: WrappedType) -> None:
        self.catalogue = catalogue
        self.forms = forms
        self.wrapped = wrapped
        self.native = wrapped.native
        self.host = f"PyHost_cs_{wrapped.native}"
        self.out: list[str] = []
        self.method_rows: list[str] = []
        self.property_rows: list[str] = []

    def lines(self) -> list[str]:
        wrapped = self.wrapped
        self.out.append(f"// {wrapped.name} " + "-" * (104 - len(wrapped.name)) + "\n")
        self._validity()
        self._converters()
        if wrapped.disposable:
            self.method_rows.append('{"__enter__", fn_as_cfunction(wrpPye_bltp_idisposable_enter), METH_NOARGS, nullptr}')
            self.method_rows.append('{"__exit__", fn_as_cfunction(wrpPye_bltp_idisposable_exit), METH_VARARGS, nullptr}')
        for index, method in enumerate(wrapped.methods):
            self._method(index, method)
        for index, prop in enumerate(wrapped.properties):
            self._property(index, prop)
        if wrapped.is_interface:
            for base in self.catalogue.bases(wrapped):
                self._inherited_rows(base)
        if wrapped.statics:
            self._statics()
        init = self._constructors()
        sequence = self._indexer()
        self._builtins()
        self._type_object(init, sequence)
        return self.out

    # Validity and converters -------------------------------------------------------------------------------

    def _references(self) -> list[str]:
        """The checks of what this type refers to: its base, then its interfaces in the order of the sets."""
        wrapped = self.wrapped
        checks: list[str] = []
        if wrapped.base is not None and not wrapped.is_interface:
            checks.append(f"wrpPy_bltp_{wrapped.base.native}_is_not_valid")
        for name in wrapped.interfaces:
            checks.append(f"wrpPy_bltp_{self.catalogue.types[name].native}_is_not_valid")
        if wrapped.is_interface and wrapped.base is not None:
            checks.append(f"wrpPy_bltp_{wrapped.base.native}_is_not_valid")
        if wrapped.iterable:
            checks.append(f"wrpPygn_bltp_{self.catalogue.element_tag(wrapped.iterable)}_iterable_is_not_valid")
        if wrapped.disposable:
            checks.append("wrpPye_bltp_idisposable_is_not_valid")
        return checks

    def _validity(self) -> None:
        native = self.native
        references = ", ".join(self._references())
        self.out += [
            f"static PyHostState wrpPy_uafn_{native}_settle() {{",
            f"    return fn_aggregate_host_state({self.host}::get_instance(), {{{references}}});",
            "}\n",
            f"static const PyHostState& wrpPy_uafn_{native}_get_aggregate_host_state() {{",
            f"    return MadeOnce<wrpPy_uafn_{native}_settle>::get();",
            "}\n",
            f"bool wrpPy_uafn_{native}_invalidate() {{",
            f"    const PyHostState& state = wrpPy_uafn_{native}_get_aggregate_host_state();",
            "    return state.is_not_valid && fn_report_host_state(state);",
            "}\n",
            f"bool wrpPy_bltp_{native}_is_not_valid(std::string& message) {{",
            f"    const PyHostState& state = wrpPy_uafn_{native}_get_aggregate_host_state();",
            "    if (state.is_not_valid) {",
            "        message = state.error_msg;",
            "    }",
            "    return state.is_not_valid;",
            "}\n",
        ]

    def _converters(self) -> None:
        wrapped = self.wrapped
        if wrapped.kind == "holder":
            return
        native = self.native
        target = "VariantArg*" if wrapped.is_struct or wrapped.is_interface else "void**"
        source = "const PyObjectOutArg& out" if wrapped.is_interface else "void* handle"
        made = "fn_conv_clr_ifcimpl_to_py_ifcimpl(out" if wrapped.is_interface else "fn_conv_clr_clsobj_to_py_clsobj(handle"
        declared = f'{{&wrpPy_tyds_{native}, "{wrapped.name}", wrpPy_uafn_{native}_invalidate}}'
        self.out += [
            f"int wrpPy_conv_py_to_clr_{native}(PyObject* value, {target} out) {{",
            f"    return fn_conv_py_to_clr_{wrapped.kind}<{self.host}>(value, out, {declared});",
            "}\n",
            f"PyObject* wrpPy_conv_clr_to_py_{native}({source}) {{",
            f"    return {made}, &wrpPy_tyds_{native});",
            "}\n",
        ]

    # Methods -----------------------------------------------------------------------------------------------

    def _method_flags(self, method: Method) -> str:
        plain = len(method.overloads) == 1 and not method.overloads[0].parameters
        flags = "METH_NOARGS" if plain else "METH_VARARGS | METH_KEYWORDS"
        return f"{flags} | METH_STATIC" if method.static else flags

    def _method(self, index: int, method: Method) -> None:
        wrapped = self.wrapped
        shared = wrapped.is_interface
        single = len(method.overloads) == 1
        inherited = self._inherited_method(method) if wrapped.is_interface else None
        family = ("htfn" if shared else "mtfn") if single and inherited is None else ("hgfn" if shared else "mgfn")
        name = f"wrpPy_{family}_{self.native}_{index:03d}_{method.name}"
        if single and inherited is None:
            self._single_method(name, method)
        else:
            self._method_group(name, method, inherited)
        self.method_rows.append(
            f'{{"{method.name}", fn_as_cfunction({name}), {self._method_flags(method)}, nullptr}}'
        )

    def _inherited_method(self, method: Method) -> str | None:
        """The attempt of a base interface's method of the same name, which a derived group tries last."""
        for base in self.catalogue.bases(self.wrapped):
            for index, other in enumerate(base.methods):
                if other.name == method.name:
                    return f"wrpPy_htgn_{base.native}_{index:03d}_{other.name}"
        return None

    def _single_method(self, name: str, method: Method) -> None:
        overload = method.overloads[0]
        check = self._static_check(method, "nullptr")
        if not overload.parameters:
            self_name = "PyObject*" if method.static else "PyObject* self"
            self.out += [
                f"static PyObject* {name}({self_name}, PyObject*) {{",
                *check,
                *_indent(self._call(overload, method.static, [], "return nullptr;", "return {};")),
                "}\n",
            ]
            return
        self_name = "PyObject*" if method.static else "PyObject* self"
        self.out += [
            f"static PyObject* {name}({self_name}, PyObject* args, PyObject* kwargs) {{",
            *check,
            *_indent(self._call(overload, method.static, self._parse(overload, "return nullptr;"), "return nullptr;",
                                "return {};")),
            "}\n",
        ]  # fmt: skip
        if self.wrapped.is_interface and self._has_derived():
            self._shared_attempt(method)

    def _has_derived(self) -> bool:
        return any(t.base is self.wrapped for t in self.catalogue.types.values())

    def _shared_attempt(self, method: Method) -> None:
        """The one-overload helper with which a derived interface's group ends."""
        index = self.wrapped.methods.index(method)
        name = f"wrpPy_htgn_{self.native}_{index:03d}_{method.name}"
        overload = method.overloads[0]
        refused = "return fn_refused(error);"
        self.out += [
            f"static Attempt {name}([[maybe_unused]] PyObject* self, PyObject* args, PyObject* kwargs,",
            "                       PyObject** error, PyObject** result_out) {",
            *_indent(self._call(overload, method.static, self._parse(overload, refused), "return Attempt::failed;",
                                "return fn_attempted({}, result_out);")),
            "}\n",
        ]  # fmt: skip

    def _static_check(self, method: Method, failure: str) -> list[str]:
        if not method.static:
            return []
        return [f"    if (wrpPy_uafn_{self.native}_invalidate()) {{", f"        return {failure};", "    }"]

    def _method_group(self, name: str, method: Method, inherited: str | None) -> None:
        rows = self._overload_rows(name, list(method.overloads), method.static, constructor=False)
        last = f", {inherited}" if inherited else ""
        self.out += [
            f"static PyObject* {name}(PyObject* self, PyObject* args, PyObject* kwargs) {{",
            *self._static_check(method, "nullptr"),
            f"    return fn_dispatch_method(self, args, kwargs, {rows}{last});",
            "}\n",
        ]

    def _overload_rows(self, name: str, overloads: list[Overload], static: bool, constructor: bool) -> str:
        """Writes one attempt an overload and the table of them; gives the table's name."""
        rows: list[str] = []
        for number, overload in enumerate(overloads):
            attempt = f"{name}_{number}"
            done = "return fn_constructed(self, {});" if constructor else "return fn_attempted({}, result_out);"
            used = "" if constructor else "[[maybe_unused]] "
            parse = self._parse(overload, "return Attempt::refused;", group=True)
            body = (
                self._construct(overload, parse, done)
                if constructor
                else self._call(overload, static, parse, "return Attempt::failed;", done, group=True)
            )
            self.out += [
                f"static Attempt {attempt}({used}PyClrObject* self, PyObject* args, PyObject* kwargs,",
                f"    {'[[maybe_unused]] ' if constructor else ''}PyObject** result_out) {{",
                *_indent(body),
                "}\n",
            ]
            count = len(overload.parameters)
            if count:
                specs = ", ".join(self.forms.parameter_spec(p) for p in overload.parameters)
                self.out.append(f"static const ParameterSpec {attempt}_parameters[] = {{{specs}}};")
                self.out.append(f"static PyObject* {attempt}_interned[{count}] = {{}};\n")
                rows.append(f"    {{{attempt}, {attempt}_parameters, {count}, {attempt}_interned}},")
            else:
                rows.append(f"    {{{attempt}, nullptr, 0, nullptr}},")
        table = f"{name}_rows"
        self.out += [f"static const OverloadRow {table}[] = {{", *rows, "};\n"]
        return table

    def _parse(self, overload: Overload, refused: str, group: bool = False) -> list[str]:
        """The targets of an overload and the parse into them."""
        if not overload.parameters:
            if not group:
                return []
            return ["if (!fn_parse_no_arguments(args, kwargs)) {", f"    {refused}", "}"]
        lines: list[str] = []
        arguments: list[str] = []
        for index, parameter in enumerate(overload.parameters):
            target = f"arg{index}"
            ref = parameter.type
            if ref.kind is Kind.OUT:
                assert ref.element is not None
                inner = self.forms.target(ref.element, target)
                converter = self.forms.converter(ref.element)
                out = "double" if ref.element.kind is Kind.DOUBLE else "void*"
                lines.append(inner)
                lines.append(f"{out} {target}_out{{}};")
                lines.append(f"PyParamByRef {target}_list = PyParamByRef::to({converter}, &{target});")
                arguments.append(f"fn_argument<fn_conv_py_parbyref_to_clr_parbyref>({target}_list)")
            else:
                lines.append(self.forms.target(ref, target))
                arguments.append(f"fn_argument<{self.forms.converter(ref)}>({target})")
        names = ", ".join(f'"{p.name}"' for p in overload.parameters)
        count = len(overload.parameters)
        lines.append(f"static ParameterNames<{count}> names{{{{{names}, nullptr}}}};")
        lines.append(f"if (!fn_parse_arguments(args, kwargs, names, {', '.join(arguments)})) {{")
        lines.append(f"    {refused}")
        lines.append("}")
        return lines

    def _passed(self, overload: Overload) -> list[str]:
        passed: list[str] = []
        for index, parameter in enumerate(overload.parameters):
            ref = parameter.type
            if ref.kind is Kind.OUT:
                assert ref.element is not None
                passed += [self.forms.passed(ref.element, f"arg{index}"), f"&arg{index}_out"]
            else:
                passed.append(self.forms.passed(ref, f"arg{index}"))
        return passed

    def _construct(self, overload: Overload, parse: list[str], done: str) -> list[str]:
        call = f"{self.host}::get_instance().{overload.entry}({', '.join(self._passed(overload))})"
        return [*parse, done.format(call)]

    def _call(
        self, overload: Overload, static: bool, parse: list[str], failed: str, done: str, group: bool = False
    ) -> list[str]:
        """The parse, the call and the conversion of its result."""
        if any(p.type.kind is Kind.OUT for p in overload.parameters):
            return self._by_list_call(overload, static, parse, failed, done, group)
        lines = list(parse)
        result = self.forms.result(overload.result)
        handle = [] if static else ["self->handle" if group else "fn_wrapper_handle(self)"]
        lines += [declaration for declaration, _ in result.out_arguments]
        arguments = [*handle, *self._passed(overload), *(a for _, a in result.out_arguments)]
        call = f"{self.host}::get_instance().{overload.entry}({', '.join(arguments)});"
        lines.append(call if result.native == "void" else f"const auto result = {call}")
        lines += ["if (PyErr_Occurred() != nullptr) {", f"    {failed}", "}"]
        lines.append(done.format(result.expression or "fn_py_return_none()"))
        return lines

    def _by_list_call(
        self, overload: Overload, static: bool, parse: list[str], failed: str, done: str, group: bool
    ) -> list[str]:
        """A call whose outputs go into lists: handles are pinned until a wrapper owns them, and nothing is pushed
        before everything is converted."""
        outs = [(i, p.type.element) for i, p in enumerate(overload.parameters) if p.type.kind is Kind.OUT]
        handles = sum(1 for _, e in outs if e is not None and e.kind is not Kind.DOUBLE)
        result = self.forms.result(overload.result)
        total = len(outs) + (1 if result.expression else 0)
        fail = ["if (PyErr_Occurred() != nullptr) {", f"    {failed}", "}"]
        handle = [] if static else ["self->handle" if group else "fn_wrapper_handle(self)"]
        arguments = [*handle, *self._passed(overload), "pins.get_buffer()"]
        call = f"{self.host}::get_instance().{overload.entry}({', '.join(arguments)});"
        lines = [*parse, f"PyTrPinHandleStack<{handles}> pins;", f"PyTrPyObjStack<{total}> outputs;"]
        lines.append(call if result.native == "void" else f"const auto result = {call}")
        lines += fail
        if result.expression:
            lines += [f"*outputs[{total - 1}] = {result.expression};", *fail]
        for slot, (index, element) in enumerate(outs):
            assert element is not None
            if element.kind is Kind.DOUBLE:
                lines.append(f"*outputs[{slot}] = PyFloat_FromDouble(arg{index}_out);")
            else:
                lines.append("++pins;")
                made = self.forms.result(element).expression
                assert made is not None
                lines.append(f"*outputs[{slot}] = {made.replace('result', f'arg{index}_out', 1)};")
            lines += fail
        for slot, (index, _) in enumerate(outs):
            lines.append(f"if (fn_push_parbyref_outvalue(arg{index}_list.list, *outputs[{slot}]) < 0) {{")
            lines += [f"    {failed}", "}", "++outputs;"]
        if result.expression:
            lines.append("++outputs;")
            lines.append(done.format(f"*outputs[{total - 1}]"))
        else:
            lines.append(done.format("fn_py_return_none()"))
        return lines

    # Properties --------------------------------------------------------------------------------------------

    def _accessor(self, index: int, action: str, name: str) -> str:
        family = "phfn" if self.wrapped.is_interface else "pafn"
        return f"wrpPy_{family}_{self.native}_{index:03d}_{action}_{name}"

    def _property(self, index: int, prop: Property) -> None:
        getter = self._accessor(index, "get", prop.name)
        result = self.forms.result(prop.type)
        arguments = ["fn_wrapper_handle(self)", *(a for _, a in result.out_arguments)]
        call = f"{self.host}::get_instance().{prop.getter}({', '.join(arguments)});"
        self.out += [
            f"static PyObject* {getter}(PyObject* self, void*) {{",
            *_indent([declaration for declaration, _ in result.out_arguments]),
            f"    {call}" if result.native == "void" else f"    const auto result = {call}",
            "    if (PyErr_Occurred() != nullptr) {",
            "        return nullptr;",
            "    }",
            f"    return {result.expression};",
            "}\n",
        ]
        setter = "nullptr"
        if not prop.read_only:
            setter = self._accessor(index, "set", prop.name)
            self._setter(setter, prop)
        self.property_rows.append(f'{{"{prop.name}", {getter}, {setter}, nullptr, nullptr}}')

    def _setter(self, name: str, prop: Property) -> None:
        ref = prop.type
        target = self.forms.target(ref, "target")
        converter = self.forms.converter(ref)
        lines = [target]
        if ref.nullable:
            lines.append(f"PyNullableArg nullable = PyNullableArg::to({converter}, &target);")
            lines.append("if (fn_conv_py_nullable_to_clr_nullable(value, &nullable) == 0) {")
            passed = f"nullable.has_value, {self.forms.passed(ref, 'target')}"
        else:
            lines.append(f"if ({converter}(value, &target) == 0) {{")
            passed = self.forms.passed(ref, "target")
        self.out += [
            f"static int {name}(PyObject* self, PyObject* value, void*) {{",
            "    if (value == nullptr) {",
            "        return fn_refuse_deletion();",
            "    }",
            *_indent(lines),
            "        return -1;",
            "    }",
            f"    {self.host}::get_instance().{prop.setter}(fn_wrapper_handle(self), {passed});",
            "    return PyErr_Occurred() != nullptr ? -1 : 0;",
            "}\n",
        ]

    def _inherited_rows(self, base: WrappedType) -> None:
        """An interface lists what its base interfaces have, with their functions."""
        own_methods = {m.name for m in self.wrapped.methods}
        for index, method in enumerate(base.methods):
            if method.name in own_methods:
                continue
            family = "htfn" if len(method.overloads) == 1 else "hgfn"
            name = f"wrpPy_{family}_{base.native}_{index:03d}_{method.name}"
            self.method_rows.append(
                f'{{"{method.name}", fn_as_cfunction({name}), {self._method_flags(method)}, nullptr}}'
            )
        for index, prop in enumerate(base.properties):
            getter = f"wrpPy_phfn_{base.native}_{index:03d}_get_{prop.name}"
            setter = "nullptr" if prop.read_only else f"wrpPy_phfn_{base.native}_{index:03d}_set_{prop.name}"
            self.property_rows.append(f'{{"{prop.name}", {getter}, {setter}, nullptr, nullptr}}')

    # Statics, constructors, indexer ------------------------------------------------------------------------

    def _statics(self) -> None:
        rows: list[str] = []
        for index, static in enumerate(self.wrapped.statics):
            getter = f"wrpPy_spvg_{self.native}_{index:03d}_get_{static.name}"
            self._static_getter(getter, static)
            rows.append(f'    {{"{static.name}", {getter}, nullptr, nullptr, nullptr}},')
        self.out += [
            f"static PyGetSetDef wrpPy_sgsf_{self.native}[] = {{",
            *rows,
            "    {nullptr, nullptr, nullptr, nullptr, nullptr},",
            "};\n",
        ]

    def _static_getter(self, name: str, static: StaticField) -> None:
        result = self.forms.result(static.type)
        self.out += [
            f"static PyObject* {name}(PyObject*, void*) {{",
            f"    if (wrpPy_uafn_{self.native}_invalidate()) {{",
            "        return nullptr;",
            "    }",
            f"    const auto result = {self.host}::get_instance().{static.entry}();",
            "    if (PyErr_Occurred() != nullptr) {",
            "        return nullptr;",
            "    }",
            f"    return {result.expression};",
            "}\n",
        ]

    def _constructors(self) -> str:
        """Writes `tp_init`; gives its name."""
        overloads = list(self.wrapped.constructors)
        if not overloads:
            return "wrapClrObject_tp_init_fault"
        name = f"wrpPy_tpsb_{self.native}_tp_init"
        if len(overloads) == 1:
            parse = self._parse(overloads[0], "return -1;", group=True)
            done = "fn_wrapper_handle(self) = {};"
            self.out += [
                f"static int {name}(PyObject* self, PyObject* args, PyObject* kwargs) {{",
                *_indent(self._construct(overloads[0], parse, done)),
                "    return PyErr_Occurred() != nullptr ? -1 : 0;",
                "}\n",
            ]
            return name
        rows = self._overload_rows(name, overloads, static=True, constructor=True)
        self.out += [
            f"static int {name}(PyObject* self, PyObject* args, PyObject* kwargs) {{",
            f"    return fn_dispatch_constructor(self, args, kwargs, {rows});",
            "}\n",
        ]
        return name

    def _indexer(self) -> str:
        """Writes the sequence table of a type with a managed indexer; gives its address or nullptr."""
        indexer = self.wrapped.indexer
        if indexer is None:
            return "nullptr"
        native = self.native
        element = indexer.element
        out, made = self._element(element)
        self.out += [
            f"static PyObject* wrpPy_bltp_{native}_sq_item(PyObject* self, Py_ssize_t index) {{",
            f"    {out} result{{}};",
            f"    const int status = {self.host}::get_instance().btp_SqGetItem(",
            "        fn_wrapper_handle(self), static_cast<int>(index), &result);",
            f"    return fn_check_item_status(status) ? {made} : nullptr;",
            "}\n",
        ]
        assign = "nullptr"
        if not indexer.read_only:
            assign = f"wrpPy_bltp_{native}_sq_ssitem"
            self.out += [
                f"static int {assign}(PyObject* self, Py_ssize_t index, PyObject* value) {{",
                "    if (value == nullptr) {",
                "        return fn_refuse_item_deletion();",
                "    }",
                f"    {self.forms.target(element, 'target')}",
                f"    if ({self.forms.converter(element)}(value, &target) == 0) {{",
                "        return -1;",
                "    }",
                f"    const int status = {self.host}::get_instance().btp_SqSetItem(",
                f"        fn_wrapper_handle(self), static_cast<int>(index), {self.forms.passed(element, 'target')});",
                "    return fn_check_item_status(status) ? 0 : -1;",
                "}\n",
            ]
        self.out.append(
            f"static PySequenceMethods wrpPy_tysd_{native} = "
            f"fn_make_indexer_slots(wrpPy_bltp_{native}_sq_item, {assign});\n"
        )
        return f"&wrpPy_tysd_{native}"

    def _element(self, element: TypeRef) -> tuple[str, str]:
        if element.kind is Kind.DOUBLE:
            return "double", "PyFloat_FromDouble(result)"
        return "void*", f"wrpPy_conv_clr_to_py_{self.forms.native_name(element)}(result)"

    # The type ----------------------------------------------------------------------------------------------

    def _builtins(self) -> None:
        wrapped = self.wrapped
        native = self.native
        kind = "convertible" if wrapped.has_cast_from else wrapped.kind
        template = {
            "class": "ClassCasts",
            "struct": "StructCasts",
            "convertible": "ConvertibleStructCasts",
            "interface": "InterfaceCasts",
            "holder": "StaticClassCasts",
        }[kind]
        casts = f"Casts_{native}"
        self.out.append(
            f"using {casts} = {template}<{self.host}, wrpPy_tyds_{native}, wrpPy_uafn_{native}_invalidate>;\n"
        )
        get_type = "wrapClrStruct_get_type" if wrapped.is_struct else "wrapClrObject_get_type"
        self.method_rows.append(f'{{"get_type", {get_type}, METH_NOARGS, nullptr}}')
        self.method_rows.append(f"VELBOR_CLASS_CAST_ROWS({casts})")

    def _type_object(self, init: str, sequence: str) -> None:
        wrapped = self.wrapped
        native = self.native
        self.out += [f"static PyMethodDef wrpPy_tymd_{native}[] = {{", *(f"    {row}," for row in self.method_rows)]
        self.out += ["    {nullptr, nullptr, 0, nullptr},", "};\n"]
        properties = "nullptr"
        if self.property_rows:
            properties = f"wrpPy_typd_{native}"
            self.out += [f"static PyGetSetDef {properties}[] = {{", *(f"    {row}," for row in self.property_rows)]
            self.out += ["    {nullptr, nullptr, nullptr, nullptr, nullptr},", "};\n"]
        base = "nullptr"
        if wrapped.base is not None and not wrapped.is_interface:
            base = f"&wrpPy_tyds_{wrapped.base.native}"
        iterate = "nullptr"
        if wrapped.iterable:
            iterate = f"wrpPygn_bltp_{self.catalogue.element_tag(wrapped.iterable)}_iterable_iter"
        maker = "fn_make_struct_type" if wrapped.is_struct else "fn_make_class_type"
        self.out += [
            f"PyTypeObject wrpPy_tyds_{native} = {maker}({{",
            f'    .name = "{wrapped.tp_name}",',
            f"    .methods = wrpPy_tymd_{native},",
            f"    .properties = {properties},",
            f"    .base = {base},",
            f"    .create = fn_wrapper_tp_new<wrpPy_uafn_{native}_invalidate>,",
            f"    .init = {init},",
            f"    .iterate = {iterate},",
            f"    .sequence = {sequence},",
            "});\n",
        ]
