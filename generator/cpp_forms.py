"""How each managed kind looks on the native side: its C types, its converters, its result conversion."""

from __future__ import annotations

from dataclasses import dataclass

from generator.model import Catalogue, EnumType, Kind, Parameter, TypeRef, WrappedType

VARIANT_KINDS = (
    Kind.STRUCT, Kind.INTERFACE, Kind.ARRAY, Kind.ILIST, Kind.ICOLLECTION, Kind.LIST, Kind.ITERABLE, Kind.STREAM,
    Kind.OBJECT, Kind.SYSTEM_ARRAY,
)  # fmt: skip

_SCALAR_TYPES = {
    Kind.DOUBLE: "double",
    Kind.SINGLE: "float",
    Kind.INT32: "int32_t",
    Kind.UINT32: "uint32_t",
    Kind.BOOL: "bool",
    Kind.DATETIME: "int64_t",
}

_SCALAR_CONVERTERS = {
    Kind.STR: "fn_conv_py_string_to_clr_string",
    Kind.BYTES: "fn_conv_py_bytes_to_clr_bytes",
    Kind.OBJECT: "fn_conv_py_variant_to_clr_variant",
    Kind.SYSTEM_TYPE: "fn_conv_py_type_to_clr_type",
    Kind.DOUBLE: "fn_conv_py_float_to_clr_double",
    Kind.SINGLE: "fn_conv_py_float_to_clr_float",
    Kind.INT32: "fn_conv_py_long_to_clr_int32",
    Kind.UINT32: "fn_conv_py_ulong_to_clr_uint32",
    Kind.BOOL: "fn_conv_py_bool_to_clr_bool",
    Kind.DATETIME: "fn_conv_py_datetime_to_clr_datetime",
    Kind.STREAM: "wrpPye_conv_py_to_clr_stream",
    Kind.SYSTEM_ARRAY: "wrpPye_conv_py_to_clr_array",
}

_COLLECTION_WORDS = {Kind.ARRAY: "array", Kind.ILIST: "ilist", Kind.LIST: "list", Kind.ITERABLE: "iterable"}

_ACCEPTS = {
    Kind.STR: "text",
    Kind.BYTES: "bytes",
    Kind.OBJECT: "variant",
    Kind.DOUBLE: "real",
    Kind.SINGLE: "real",
    Kind.INT32: "integer",
    Kind.UINT32: "integer",
    Kind.BOOL: "boolean",
    Kind.ENUM: "enumeration",
    Kind.CLASS: "object",
    Kind.STRUCT: "value",
    Kind.INTERFACE: "interface",
    Kind.STREAM: "stream",
    Kind.ARRAY: "list_like",
    Kind.ILIST: "list_like",
    Kind.LIST: "list_like",
    Kind.OUT: "by_list",
}


@dataclass(frozen=True)
class Result:
    """A managed result: its native return type, the trailing out arguments, and the Python object made of them."""

    native: str
    out_arguments: tuple[tuple[str, str], ...]  # (declaration, argument)
    expression: str | None  # None when there is nothing to convert


class Forms:
    """The forms of the types of one catalogue."""

    def __init__(self, catalogue: Catalogue) -> None:
        self.catalogue = catalogue

    def wrapped(self, ref: TypeRef) -> WrappedType:
        assert ref.type_name is not None
        return self.catalogue.types[ref.type_name]

    def enum(self, ref: TypeRef) -> EnumType:
        assert ref.type_name is not None
        return self.catalogue.enums[ref.type_name]

    def native_name(self, ref: TypeRef) -> str:
        return self.enum(ref).native if ref.kind is Kind.ENUM else self.wrapped(ref).native

    def element_tag(self, ref: TypeRef) -> str:
        assert ref.element is not None
        return self.catalogue.element_tag(ref.element)

    @staticmethod
    def enum_value(enum: EnumType) -> str:
        return "unsigned char" if enum.byte else "int"

    # What goes in ------------------------------------------------------------------------------------------

    def argument_types(self, ref: TypeRef) -> list[str]:
        """The native argument types of a parameter or of a setter's value."""
        if ref.nullable:
            return ["int", *self.argument_types(TypeRef(ref.kind, ref.text.rstrip("?"), ref.type_name))]
        if ref.kind is Kind.OUT:
            assert ref.element is not None
            inner = self.argument_types(ref.element)
            return [*inner, "double*" if ref.element.kind is Kind.DOUBLE else "void**"]
        if ref.kind is Kind.STR:
            return ["const PyStringArg*"]
        if ref.kind is Kind.BYTES:
            return ["const PyBytesArg*"]
        if ref.kind in (Kind.CLASS, Kind.SYSTEM_TYPE):
            return ["void*"]
        if ref.kind is Kind.ENUM:
            return [self.enum_value(self.enum(ref))]
        if ref.kind in VARIANT_KINDS:
            return ["const VariantArg*"]
        return [_SCALAR_TYPES[ref.kind]]

    def target(self, ref: TypeRef, name: str) -> str:
        """The declaration of the variable that a converter fills."""
        if ref.kind is Kind.STR:
            return f"PyStringArg {name};"
        if ref.kind is Kind.BYTES:
            return f"PyBytesArgBuilder {name};"
        if ref.kind is Kind.SYSTEM_TYPE:
            return f"PyInterimArgBuilder {name};"
        if ref.kind is Kind.CLASS:
            return f"void* {name} = nullptr;"
        if ref.kind is Kind.ENUM:
            return f"{self.enum_value(self.enum(ref))} {name} = 0;"
        if ref.kind in VARIANT_KINDS:
            return f"VariantArg {name};"
        return f"{_SCALAR_TYPES[ref.kind]} {name}{{}};"

    def converter(self, ref: TypeRef) -> str:
        """The converter of a parameter or of a setter's value."""
        if ref.kind in _SCALAR_CONVERTERS:
            return _SCALAR_CONVERTERS[ref.kind]
        if ref.kind in _COLLECTION_WORDS:
            return f"wrpPygn_conv_py_to_clr_{_COLLECTION_WORDS[ref.kind]}_{self.element_tag(ref)}"
        return f"wrpPy_conv_py_to_clr_{self.native_name(ref)}"

    def passed(self, ref: TypeRef, name: str) -> str:
        """How the converted value goes to the entry point."""
        if ref.kind is Kind.STR or ref.kind in VARIANT_KINDS:
            return f"&{name}"
        if ref.kind is Kind.BYTES:
            return f"{name}.get_info()"
        if ref.kind is Kind.SYSTEM_TYPE:
            return f"{name}.handle"
        return name

    def parameter_spec(self, parameter: Parameter) -> str:
        """The row by which the choice of an overload looks at this parameter."""
        ref = parameter.type
        accepts = _ACCEPTS.get(ref.kind, "anything")
        text = f'"{parameter.name}", Accepts::{accepts}'
        if ref.kind in (Kind.CLASS, Kind.STRUCT, Kind.INTERFACE):
            text += f", &wrpPy_tyds_{self.wrapped(ref).native}"
        elif ref.kind is Kind.ENUM:
            text += f", nullptr, &wrpPy_tyds_{self.enum(ref).native}"
        return "{" + text + "}"

    # What comes out ----------------------------------------------------------------------------------------

    def result(self, ref: TypeRef) -> Result:
        """The result of a method or a getter; a plain one is called `result`, a record `out`."""
        if ref.nullable:
            return self._nullable_result(ref)
        kind = ref.kind
        if kind is Kind.VOID:
            return Result("void", (), None)
        if kind in (Kind.STR, Kind.BYTES, Kind.OBJECT):
            return Result("PyObject*", (), "result")
        if kind in (Kind.DOUBLE, Kind.SINGLE):
            return Result(_SCALAR_TYPES[kind], (), "PyFloat_FromDouble(result)")
        if kind is Kind.INT32:
            return Result("int32_t", (), "PyLong_FromLong(result)")
        if kind is Kind.UINT32:
            return Result("uint32_t", (), "PyLong_FromUnsignedLong(result)")
        if kind is Kind.BOOL:
            return Result("bool", (), "PyBool_FromLong(result)")
        if kind is Kind.ENUM:
            enum = self.enum(ref)
            return Result(self.enum_value(enum), (), f"wrpPy_conv_clr_to_py_{enum.native}(result)")
        if kind in (Kind.CLASS, Kind.STRUCT):
            return Result("void*", (), f"wrpPy_conv_clr_to_py_{self.native_name(ref)}(result)")
        if kind is Kind.SYSTEM_TYPE:
            return Result("void*", (), "wrpPyl_convcaps_clr_to_py_C08ECFAB_Type(result)")
        if kind is Kind.ARRAY:
            wrapper = f"wrpPygn_tyds_{self.element_tag(ref)}_ArrayWrapper"
            return Result("void*", (), f"fn_conv_clr_clsobj_to_py_clsobj(result, &{wrapper})")
        if kind is Kind.INTERFACE:
            out = (("PyObjectOutArg out;", "&out"),)
            return Result("void", out, f"wrpPy_conv_clr_to_py_{self.native_name(ref)}(out)")
        if kind is Kind.VERSION:
            return Result("void", (("PySysVersionArg out;", "&out"),), "fn_conv_clr_version_to_py_tuple(out)")
        collection = (("PyCollectionArg out;", "&out"),)
        if kind is Kind.STREAM:
            return Result("void", collection, "fn_conv_clr_absobj_to_py_absobj(out, &wrpPye_tyds_StreamWrapper)")
        wrapper = {Kind.ILIST: "IListWrapper", Kind.ICOLLECTION: "IColWrapper", Kind.LIST: "ListWrapper"}[kind]
        function = "fn_conv_clr_btpobj_to_py_btpobj" if kind is Kind.LIST else "fn_conv_clr_ifcimpl_to_py_ifcimpl_wps"
        return Result("void", collection, f"{function}(out, &wrpPygn_tyds_{self.element_tag(ref)}_{wrapper})")

    def _nullable_result(self, ref: TypeRef) -> Result:
        if ref.kind is Kind.DATETIME:
            # The flag comes first, then room for the ticks and for the offset of local time.
            date_outs = (("int has_value = 0;", "&has_value"), ("int64_t out[2] = {};", "out"))
            return Result("void", date_outs, "has_value == 0 ? fn_py_return_none() : fn_conv_clr_datetime_to_py_datetime(out)")
        # Preset, so that an entry point that does not fill the flag is served too.
        outs = (("int has_value = 1;", "&has_value"),)
        native = self.enum_value(self.enum(ref)) if ref.kind is Kind.ENUM else "void*"
        made = f"wrpPy_conv_clr_to_py_{self.native_name(ref)}(result)"
        return Result(native, outs, f"has_value == 0 ? fn_py_return_none() : {made}")

    def out_types(self, result: Result) -> list[str]:
        """The C types of the trailing out arguments."""
        types = {
            "PyObjectOutArg out;": "PyObjectOutArg*",
            "PySysVersionArg out;": "PySysVersionArg*",
            "PyCollectionArg out;": "PyCollectionArg*",
            "int has_value = 0;": "int*",
            "int has_value = 1;": "int*",
            "int64_t out[2] = {};": "int64_t*",
        }
        return [types[declaration] for declaration, _ in result.out_arguments]
