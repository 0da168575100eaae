#!/usr/bin/env python3
"""Produces the control's interface code from its one description (image_edit_ctrl.odl).

    generate_interface.py cpp DESCRIPTION OUTPUT_DIR
        control_methods.inc   the interface methods, declared inside CImageEditCtrl
        control_methods.cpp   their forwarding to the editor, each editor operation
                              checked at compile time against the description
        dispatch_methods.cpp  the dispatch table: DISPIDs, parameters, results, calls
        control_events.h      the events' DISPIDs and EventName()
    generate_interface.py typelib DESCRIPTION OUTPUT_DIR
        type_library_text.cpp     the type library as the module embeds it and writes
                                  it out at registration: every type with its GUID,
                                  flags and help, every function with its DISPID,
                                  result, parameter names and types
    generate_interface.py web DESCRIPTION DTS_TEMPLATE OUTPUT_DIR
        image-edit-interface.js   the element's method list with the parameter roles
        image-edit-control.d.ts   the element's TypeScript declaration: DTS_TEMPLATE
                                  with the methods, events and sink filled in
    generate_interface.py reference DESCRIPTION DTS_TEMPLATE OUTPUT_DIR
        REFERENCE.md              the element's reference page: its own members and
                                  events as DTS_TEMPLATE documents them, and every
                                  method and event of the description

A description that cannot be read stops the generator with "FILE:LINE: what is wrong"
on standard error and exit status 1, before anything is written. The description's
syntax is explained at its top.
"""

import re
import sys
from dataclasses import dataclass, field
from pathlib import Path

GENERATOR = Path(__file__).name


class DescriptionError(Exception):
    def __init__(self, path, line, message):
        super().__init__(f"{path}:{line}: {message}")


# ---- reading the description ----

TOKEN = re.compile(
    r"""(?P<space>[ \t\r\f]+)
      | (?P<newline>\n)
      | (?P<comment>//[^\n]*)
      | (?P<string>"[^"\\\n]*")
      | (?P<number>-?(?:0[xX][0-9A-Fa-f]+|[0-9]+(?:\.[0-9]+)?)(?![A-Za-z0-9_]))
      | (?P<name>[A-Za-z_][A-Za-z0-9_]*)
      | (?P<punctuation>[\[\](){},;:])""",
    re.VERBOSE,
)


@dataclass
class Token:
    kind: str  # name, number, string, punctuation, end
    text: str
    line: int

    def describe(self):
        return "the end of the file" if self.kind == "end" else f"'{self.text}'"


def tokenize(path, text):
    tokens, line, at = [], 1, 0
    while at < len(text):
        match = TOKEN.match(text, at)
        if match is None:
            if text[at] == '"':
                raise DescriptionError(path, line, "a string must end on its line and holds no backslash")
            raise DescriptionError(path, line, f"unexpected character '{text[at]}'")
        kind = match.lastgroup
        if kind == "newline":
            line += 1
        elif kind not in ("space", "comment"):
            value = match.group()[1:-1] if kind == "string" else match.group()
            tokens.append(Token(kind, value, line))
        at = match.end()
    tokens.append(Token("end", "", line))
    return tokens


@dataclass
class Attribute:
    name: str
    args: list  # of Token
    line: int


@dataclass
class Declaration:
    """One declared thing (library, dispinterface, coclass, member, method, parameter)."""

    attributes: dict  # name -> Attribute
    line: int
    name: str
    kind: str = None
    type: Token = None  # a method's result type, a parameter's type
    items: list = None  # a library's dispinterfaces and coclasses
    methods: list = None
    members: list = None
    params: list = None


class Parser:
    """The description's grammar:

        file       := attributes 'library' NAME '{' item* '}' [';']
        item       := attributes 'dispinterface' NAME '{' 'methods' ':' method* '}' ';'
                    | attributes 'coclass' NAME '{' (attributes 'dispinterface' NAME ';')* '}' ';'
        method     := attributes TYPE NAME '(' [parameter (',' parameter)*] ')' ';'
        parameter  := attributes TYPE NAME
        attributes := ['[' NAME ['(' VALUE (',' VALUE)* ')'] (',' ...)* ']']
    """

    def __init__(self, path, text):
        self.path = path
        self.tokens = tokenize(path, text)
        self.at = 0

    def fail(self, token, message):
        raise DescriptionError(self.path, token.line, message)

    def peek(self):
        return self.tokens[self.at]

    def next(self):
        token = self.tokens[self.at]
        if token.kind != "end":
            self.at += 1
        return token

    def accept(self, text):
        if self.peek().kind in ("name", "punctuation") and self.peek().text == text:
            return self.next()
        return None

    def expect(self, text, what=None):
        token = self.accept(text)
        if token is None:
            self.fail(self.peek(), f"expected {what or repr(text)}, found {self.peek().describe()}")
        return token

    def name(self, what):
        token = self.next()
        if token.kind != "name":
            self.fail(token, f"expected {what}, found {token.describe()}")
        return token

    def attributes(self):
        found = {}
        if not self.accept("["):
            return found
        while True:
            name = self.name("an attribute")
            args = []
            if self.accept("("):
                while True:
                    arg = self.next()
                    if arg.kind not in ("name", "number", "string"):
                        self.fail(arg, f"expected an attribute value, found {arg.describe()}")
                    args.append(arg)
                    if not self.accept(","):
                        break
                self.expect(")", "',' or ')'")
            if name.text in found:
                self.fail(name, f"attribute '{name.text}' given twice")
            found[name.text] = Attribute(name.text, args, name.line)
            if not self.accept(","):
                break
        self.expect("]", "',' or ']'")
        return found

    def declaration(self, attributes, name, **parts):
        return Declaration(attributes, name.line, name.text, **parts)

    def parse(self):
        attributes = self.attributes()
        self.expect("library")
        library = self.declaration(attributes, self.name("the library's name"), items=[])
        self.expect("{")
        while not self.accept("}"):
            attributes = self.attributes()
            if self.accept("dispinterface"):
                library.items.append(self.dispinterface(attributes))
            elif self.accept("coclass"):
                library.items.append(self.coclass(attributes))
            else:
                self.fail(self.peek(), f"expected 'dispinterface' or 'coclass', found {self.peek().describe()}")
        self.accept(";")
        if self.peek().kind != "end":
            self.fail(self.peek(), f"expected the end of the file after the library, "
                                   f"found {self.peek().describe()}")
        return library

    def dispinterface(self, attributes):
        interface = self.declaration(attributes, self.name("the dispinterface's name"), kind="dispinterface",
                                     methods=[])
        self.expect("{")
        self.expect("methods")
        self.expect(":")
        while not self.accept("}"):
            interface.methods.append(self.method())
        self.expect(";")
        return interface

    def method(self):
        attributes = self.attributes()
        result = self.name("a result type")
        method = self.declaration(attributes, self.name("the method's name"), type=result, params=[])
        self.expect("(")
        if not self.accept(")"):
            while True:
                param_attributes = self.attributes()
                param_type = self.name("a parameter type")
                method.params.append(self.declaration(param_attributes, self.name("the parameter's name"),
                                                      type=param_type))
                if not self.accept(","):
                    break
            self.expect(")", "',' or ')'")
        self.expect(";")
        return method

    def coclass(self, attributes):
        coclass = self.declaration(attributes, self.name("the coclass's name"), kind="coclass", members=[])
        self.expect("{")
        while not self.accept("}"):
            member_attributes = self.attributes()
            self.expect("dispinterface")
            coclass.members.append(self.declaration(member_attributes, self.name("a dispinterface's name")))
            self.expect(";")
        self.expect(";")
        return coclass


# ---- what the description means ----

# What each description type is on each side. Parameters: the C++ types of the control's
# and the editor's parameter (a BOOL's editor type comes from its editor(...)
# attribute), the dispatch table's ParamType, how the dispatch call reads the converted
# argument, and the TypeScript type a page passes.
PARAMETER_TYPES = {
    "int": dict(control="int", editor="int", dispatch="Int", argument="args[{}].asInt()", ts="number"),
    "BSTR": dict(control="LPCSTR", editor="LPCSTR", dispatch="String", argument="args[{}].asString().c_str()",
                 ts="string"),
    "BOOL": dict(control="long", editor=None, dispatch="Bool", argument="args[{}].asInt()", ts="number | boolean"),
}
# Results: the C++ types, the dispatch table's ResultType, the control's result before
# the editor window exists, how the editor's result becomes the control's and the
# control's a Variant (None: there is none), and what a page receives: before the
# control exists (`js_empty`, None for undefined) as well as after (`ts`), and from a
# call that waited for the control (`resolved`).
RESULT_TYPES = {
    "void": dict(control="void", editor="void", dispatch="None", empty="", to_control=None, to_variant=None,
                 js_empty=None, ts="void", resolved="void"),
    "BSTR": dict(control="Variant", editor="std::string", dispatch="String", empty=" Variant::Null()",
                 to_control="Variant::String({})", to_variant="{}", js_empty="null", ts="string | null",
                 resolved="string"),
    "BOOL": dict(control="BOOL", editor="BOOL", dispatch="Bool", empty=" FALSE", to_control="{}",
                 to_variant="Variant::Bool({} != FALSE)", js_empty="false", ts="boolean", resolved="boolean"),
}
# What the editor receives for a BOOL parameter: the argument compared with 1, so that
# only 1 turns a setting on, or the argument as it is.
EDITOR_FLAG_ARGUMENTS = {"bool": "{} == 1", "long": "{}"}
PARAMETER_DIALOGS = ("color", "font")
# What an int parameter's range(LOW, HIGH, OUTSIDE) says of the values outside it.
OUTSIDE_RANGE = {"clamped": "clamped", "ignored": "other values change nothing"}
METHOD_DIALOGS = ("about",)
ROLES = ("picture", "savefile", "dialog")


@dataclass
class Parameter:
    name: str
    type: str
    editor_type: str = None
    editor_argument: str = None  # the C++ expression the editor receives
    role: str = None  # one of ROLES
    dialog: str = None
    dialog_values: list = field(default_factory=list)
    help: str = None
    range: tuple = None  # (lowest, highest, what other values do: one of OUTSIDE_RANGE)


@dataclass
class Method:
    name: str
    dispid: int
    result: str
    params: list
    help: str
    line: int
    editor_operation: str = None  # None: the control answers the call itself
    dialog: str = None  # a dialog the call always opens
    lengthy: bool = False  # may pass over the whole picture: a page runs it at its next frame


@dataclass
class Interface:
    methods: list
    events: list
    identifiers: list = field(default_factory=list)  # of (C++ constant, GUID text)


def fits(shape, kinds):
    if shape == "no value":
        return not kinds
    if shape == "a name and strings":
        return kinds[:1] == ["name"] and all(kind == "string" for kind in kinds[1:])
    if shape == "two numbers and a name":
        return kinds == ["number", "number", "name"]
    return kinds == [{"a number": "number", "a string": "string", "a name": "name"}[shape]]


class Checker:
    """Turns the parsed description into an Interface, refusing what makes no sense."""

    def __init__(self, path):
        self.path = path

    def fail(self, line, message):
        raise DescriptionError(self.path, line, message)

    def allow(self, declaration, where, known):
        """`known`: each attribute the declaration may have, with the values it takes."""
        for attribute in declaration.attributes.values():
            if attribute.name not in known:
                self.fail(attribute.line, f"unknown attribute '{attribute.name}' on {where} "
                                          f"(known: {', '.join(known) or 'none'})")
            if not fits(known[attribute.name], [arg.kind for arg in attribute.args]):
                self.fail(attribute.line, f"attribute '{attribute.name}' takes {known[attribute.name]}")

    @staticmethod
    def value(declaration, name):
        attribute = declaration.attributes.get(name)
        return attribute.args[0].text if attribute else None

    def check(self, library):
        self.allow(library, "the library", {"version": "a number", "lcid": "a number", "helpfile": "a string",
                                            "helpstring": "a string", "uuid": "a string"})
        identifiers = [self.identifier(library, "LIBID")]
        interfaces, coclasses = {}, []
        for item in library.items:
            if item.kind == "dispinterface":
                self.allow(item, "a dispinterface", {"helpstring": "a string", "hidden": "no value",
                                                     "uuid": "a string"})
                if item.name in interfaces:
                    self.fail(item.line, f"dispinterface {item.name} is declared twice")
                interfaces[item.name] = item
                identifiers.append(self.identifier(item, "DIID"))
            else:
                self.allow(item, "a coclass", {"helpstring": "a string", "control": "no value", "uuid": "a string"})
                coclasses.append(item)
                identifiers.append(self.identifier(item, "CLSID"))
        if len(coclasses) != 1:
            self.fail(library.line, "the library declares one coclass, the control")
        seen = {}
        for name, uuid, line in identifiers:
            if uuid in seen:
                self.fail(line, f"{name} has the same uuid as {seen[uuid]}")
            seen[uuid] = name
        methods, events = self.coclass_interfaces(coclasses[0], interfaces)
        interface = Interface([self.method(m) for m in methods.methods], [self.event(e) for e in events.methods],
                              [(name, uuid) for name, uuid, _ in identifiers])
        for members in (interface.methods, interface.events):
            self.unique(members, "DISPID", lambda member: member.dispid)
            # Hosts find methods by name whatever its case.
            self.unique(members, "name", lambda member: member.name.lower())
        self.editor_operations_agree(interface.methods)
        return interface

    def identifier(self, declaration, prefix):
        """The declaration's fixed GUID, as (C++ constant, upper-case GUID text, line):
        hosts and registrations name the library, the interfaces and the control by
        them."""
        uuid = self.value(declaration, "uuid")
        if uuid is None:
            self.fail(declaration.line, f"{declaration.name} has no uuid(...)")
        if not re.fullmatch(r"[0-9A-Fa-f]{8}-[0-9A-Fa-f]{4}-[0-9A-Fa-f]{4}-[0-9A-Fa-f]{4}-[0-9A-Fa-f]{12}", uuid):
            self.fail(declaration.line, f'{declaration.name}: "{uuid}" is no GUID '
                                        f"(XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX, hexadecimal)")
        return f"{prefix}_{declaration.name}", uuid.upper(), declaration.line

    def coclass_interfaces(self, coclass, interfaces):
        """The coclass's default interface (the methods) and default source (the events)."""
        chosen = {}
        for member in coclass.members:
            self.allow(member, "a coclass member", {"default": "no value", "source": "no value"})
            if member.name not in interfaces:
                self.fail(member.line, f"no dispinterface is named {member.name}")
            if "default" in member.attributes:
                role = "source" if "source" in member.attributes else "interface"
                if role in chosen:
                    self.fail(member.line, f"the coclass has a second default {role}")
                chosen[role] = interfaces[member.name]
        for role in ("interface", "source"):
            if role not in chosen:
                self.fail(coclass.line, f"the coclass names no default {role}")
        return chosen["interface"], chosen["source"]

    def unique(self, members, what, key):
        seen = {}
        for member in members:
            if key(member) in seen:
                self.fail(member.line, f"{member.name} has the same {what} as {seen[key(member)]}")
            seen[key(member)] = member.name

    def member(self, declaration, where, known):
        """What every method and event has: a DISPID, a help string, a result and
        parameters of known types with different names."""
        self.allow(declaration, where, {"id": "a number", "helpstring": "a string", **known})
        for required in ("id", "helpstring"):
            if required not in declaration.attributes:
                self.fail(declaration.line, f"{declaration.name} has no {required}(...)")
        dispid = self.value(declaration, "id")
        if not re.fullmatch(r"-?[0-9]+", dispid):
            self.fail(declaration.line, f"{declaration.name}: a DISPID is a whole number, not {dispid}")
        if declaration.type.text not in RESULT_TYPES:
            self.fail(declaration.type.line, f"{declaration.name}: unknown result type '{declaration.type.text}' "
                                             f"(known: {', '.join(RESULT_TYPES)})")
        names = set()
        for param in declaration.params:
            if param.type.text not in PARAMETER_TYPES:
                self.fail(param.line, f"{declaration.name}: parameter {param.name} has unknown type "
                                      f"'{param.type.text}' (known: {', '.join(PARAMETER_TYPES)})")
            if param.name in names:
                self.fail(param.line, f"{declaration.name}: two parameters are named {param.name}")
            names.add(param.name)
        help = self.help(declaration, declaration.name)
        return Method(declaration.name, int(dispid), declaration.type.text, [], help, declaration.line)

    def help(self, declaration, where):
        help = self.value(declaration, "helpstring")
        if help is not None and "*/" in help:
            self.fail(declaration.line, f"{where}: a help string cannot hold */ (it ends a comment)")
        return help

    def event(self, declaration):
        event = self.member(declaration, "an event", {})
        if event.result != "void":
            self.fail(declaration.line, f"{event.name}: an event has no result (void)")
        for param in declaration.params:
            self.allow(param, "an event's parameter", {"helpstring": "a string"})
            event.params.append(Parameter(param.name, param.type.text,
                                          help=self.help(param, f"{event.name}: parameter {param.name}")))
        return event

    def method(self, declaration):
        method = self.member(declaration, "a method", {"editor": "a name", "dialog": "a name", "lengthy": "no value"})
        method.params = [self.parameter(method, param) for param in declaration.params]
        operation = self.value(declaration, "editor") or method.name
        method.editor_operation = None if operation == "none" else operation
        method.dialog = self.value(declaration, "dialog")
        method.lengthy = "lengthy" in declaration.attributes
        if method.lengthy and (method.result != "void" or method.dialog):
            self.fail(declaration.line, f"{method.name}: only a call that returns nothing and opens no dialog "
                                        f"can wait for the next frame")
        if method.dialog is not None and method.dialog not in METHOD_DIALOGS:
            self.fail(declaration.line, f"{method.name}: a method itself opens only the dialog "
                                        f"{', '.join(METHOD_DIALOGS)}; the others are opened by a parameter")
        roles = [param.role for param in method.params if param.role]
        for role in ("savefile", "dialog"):
            if roles.count(role) > 1:
                self.fail(declaration.line, f"{method.name}: only one parameter may be a {role}")
        if method.dialog and "dialog" in roles:
            self.fail(declaration.line, f"{method.name}: opens a dialog both always and for some values")
        if "picture" in roles and (method.dialog or "dialog" in roles or "savefile" in roles):
            self.fail(declaration.line, f"{method.name}: a call that loads pictures neither opens a dialog "
                                        f"nor writes a file")
        return method

    def parameter(self, method, declaration):
        where = f"{method.name}: parameter {declaration.name}"
        self.allow(declaration, "a parameter", {"editor": "a name", "picture": "no value", "savefile": "no value",
                                                "dialog": "a name and strings", "helpstring": "a string",
                                                "range": "two numbers and a name"})
        param = Parameter(declaration.name, declaration.type.text, help=self.help(declaration, where))
        if "range" in declaration.attributes:
            param.range = self.range(declaration, where)
        editor = self.value(declaration, "editor")
        if param.type == "BOOL":
            if editor not in EDITOR_FLAG_ARGUMENTS:
                self.fail(declaration.line, f"{where} is a BOOL: say whether the editor receives it as "
                                            f"editor(bool) or editor(long)")
            param.editor_type, param.editor_argument = editor, EDITOR_FLAG_ARGUMENTS[editor].format(param.name)
        elif editor is not None:
            self.fail(declaration.line, f"{where}: only a BOOL parameter says what the editor receives")
        else:
            param.editor_type, param.editor_argument = PARAMETER_TYPES[param.type]["editor"], param.name
        roles = [role for role in ROLES if role in declaration.attributes]
        if len(roles) > 1:
            self.fail(declaration.line, f"{where} has more than one role ({', '.join(roles)})")
        if roles and param.type != "BSTR":
            self.fail(declaration.line, f"{where}: only a BSTR parameter can be a {roles[0]}")
        param.role = roles[0] if roles else None
        if param.role == "dialog":
            dialog, *values = declaration.attributes["dialog"].args
            if dialog.text not in PARAMETER_DIALOGS:
                self.fail(dialog.line, f"{where}: unknown dialog '{dialog.text}' "
                                       f"(known: {', '.join(PARAMETER_DIALOGS)})")
            if not values:
                self.fail(dialog.line, f"{where}: name the values that open the dialog")
            for value in values:
                if value.text != value.text.upper():
                    self.fail(value.line, f'{where}: write the dialog value "{value.text}" in upper case '
                                          f"(it matches in any case)")
            param.dialog, param.dialog_values = dialog.text, [value.text for value in values]
        return param

    def range(self, declaration, where):
        low, high, outside = declaration.attributes["range"].args
        if declaration.type.text != "int":
            self.fail(declaration.line, f"{where}: only an int parameter has a range")
        if not all(re.fullmatch(r"-?[0-9]+", bound.text) for bound in (low, high)):
            self.fail(low.line, f"{where}: a range's bounds are whole numbers")
        if int(low.text) > int(high.text):
            self.fail(low.line, f"{where}: the range {low.text} to {high.text} is empty")
        if outside.text not in OUTSIDE_RANGE:
            self.fail(outside.line, f"{where}: say what other values do: {' or '.join(OUTSIDE_RANGE)}")
        return int(low.text), int(high.text), outside.text

    def editor_operations_agree(self, methods):
        """Methods that call the same editor operation must hand it the same types."""
        first = {}
        for method in methods:
            if method.editor_operation is None:
                continue
            signature, other = first.setdefault(method.editor_operation, (editor_signature(method), method))
            if signature != editor_signature(method):
                self.fail(method.line, f"{method.name} calls CImageEditWnd::{method.editor_operation} as "
                                       f"{editor_signature(method)}, but {other.name} calls it as {signature}")


def read_description(path):
    return Checker(path).check(Parser(path, Path(path).read_text(encoding="utf-8")).parse())


# ---- C++ ----

def control_signature(method, qualifier=""):
    params = ", ".join(f"{PARAMETER_TYPES[p.type]['control']} {p.name}" for p in method.params)
    return f"{RESULT_TYPES[method.result]['control']} {qualifier}{method.name}({params})"


def editor_signature(method):
    return f"{RESULT_TYPES[method.result]['editor']}({', '.join(p.editor_type for p in method.params)})"


def generated_note(description, *sources):
    names = " and ".join(Path(source).name for source in (description, *sources))
    return f"// Generated by {GENERATOR} from {names}: edit {'those' if sources else 'that'} instead.\n"



def cpp_declarations(interface, description):
    declarations = "\n".join(f"// {m.help}.\n{control_signature(m)};" for m in interface.methods)
    return (generated_note(description) +
            "// The interface methods, declared inside CImageEditCtrl. Each forwards to its editor\n"
            "// operation once the editor window exists (interface/control_methods.cpp).\n\n" +
            declarations + "\n")


def cpp_forwarding_method(method):
    result = RESULT_TYPES[method.result]
    call = f"m_editor.{method.editor_operation}({', '.join(p.editor_argument for p in method.params)})"
    body = f"{call};" if result["to_control"] is None else f"return {result['to_control'].format(call)};"
    return (f"{control_signature(method, 'CImageEditCtrl::')} {{\n"
            f"  if (!m_editor.m_windowCreated) return{result['empty']};\n"
            f"  {body}\n}}\n")


def cpp_forwarding(interface, description):
    parts = []
    checked = set()
    for method in interface.methods:
        if method.editor_operation is None:
            continue  # the control answers it itself (image_edit_ctrl.cpp)
        if method.editor_operation not in checked:
            checked.add(method.editor_operation)
            signature = editor_signature(method)
            parts.append(f"static_assert(std::is_same_v<OperationSignature<decltype(&CImageEditWnd::"
                         f"{method.editor_operation})>, {signature}>,\n"
                         f'              "CImageEditWnd::{method.editor_operation} must be {signature}, as '
                         f'{Path(description).name} says");')
        parts.append(cpp_forwarding_method(method))
    return (generated_note(description) +
            "// The control's interface methods. Each forwards to the editor operation the description\n"
            "// names once the editor window exists, and gives the empty result before that (nothing, a\n"
            "// null string, FALSE). Every editor operation must take and return what the description\n"
            "// says the editor receives: the build stops at one that does not.\n"
            "#include <string>\n#include <type_traits>\n\n"
            '#include "control/image_edit_ctrl.h"\n#include "control/operation_signature.h"\n\n' +
            "\n".join(parts))


def cpp_dispatch_row(method):
    result = RESULT_TYPES[method.result]
    params = ", ".join(f'{{"{p.name}", ParamType::{PARAMETER_TYPES[p.type]["dispatch"]}}}' for p in method.params)
    call = f"control.{method.name}(" + \
        ", ".join(PARAMETER_TYPES[p.type]["argument"].format(i) for i, p in enumerate(method.params)) + ")"
    body = f"{call};\n         return Variant();" if result["to_variant"] is None else \
        f"return {result['to_variant'].format(call)};"
    args = " args" if method.params else ""  # unnamed when unused
    return (f'      {{{method.dispid}, "{method.name}", {{{params}}}, ResultType::{result["dispatch"]},\n'
            f"       [](CImageEditCtrl& control, std::span<const Variant>{args}) {{\n"
            f"         {body}\n"
            f"       }}}},")


def cpp_dispatch_table(interface, description):
    return (generated_note(description) +
            "// The dispatch table: every method in the order the description lists them, with the\n"
            "// call that reaches the control's method. Invoke has checked the argument count and\n"
            "// converted each argument to its parameter's type before it calls.\n"
            '#include "control/dispatch_table.h"\n#include "control/image_edit_ctrl.h"\n\n'
            "const std::vector<MethodInfo>& DispatchMethods() {\n"
            "  static const std::vector<MethodInfo> methods = {\n" +
            "\n".join(cpp_dispatch_row(m) for m in interface.methods) +
            "\n  };\n  return methods;\n}\n")


def cpp_guid(uuid):
    parts = uuid.split("-")
    data4 = parts[3] + parts[4]
    bytes_ = ", ".join(f"0x{data4[i:i + 2]}" for i in range(0, 16, 2))
    return f"ocx::GUID{{0x{parts[0]}, 0x{parts[1]}, 0x{parts[2]}, {{{bytes_}}}}}"


def cpp_module_identifiers(interface, description):
    checks = "".join(f"static_assert(ocx::{name} == {cpp_guid(uuid)},\n"
                     f'              "ocx::{name} must be {{{uuid}}}, as {Path(description).name} says");\n'
                     for name, uuid in interface.identifiers)
    return (generated_note(description) +
            "// The module's binary interface names the library, its interfaces and the control by\n"
            "// the GUIDs the description gives them: the build stops at one that differs.\n"
            '#include "control/module/module_abi.h"\n\n' + checks)


def event_constant(event):
    return f"DISPID_{event.name.upper()}"


def cpp_events(interface, description):
    constants = "".join(f"inline constexpr int {event_constant(e)} = {e.dispid};\n" for e in interface.events)
    cases = "".join(f'    case {event_constant(e)}:\n      return "{e.name}";\n' for e in interface.events)
    return (generated_note(description) +
            "// The events a connected sink hears, by DISPID.\n#pragma once\n\n" + constants +
            "\n// The event's name as a scripting host knows it, or null for a DISPID that is no event.\n"
            "inline const char* EventName(int dispid) {\n  switch (dispid) {\n" + cases +
            "  }\n  return nullptr;\n}\n")


# ---- the type library ----

# How each description type is written in the type library: BOOL parameters and
# results are 32-bit integers there, int the machine's integer.
TYPELIB_TYPES = {"int": "INT", "BOOL": "I4", "BSTR": "BSTR", "void": "VOID"}


def typelib_text_line(*words, help=None):
    return " ".join(words) + (f' "{help}"' if help is not None else "") + "\n"


def typelib_flags(declaration, flags):
    """The type flags that the declaration's attributes set, in the order given."""
    return ",".join(flag for attribute, flag in flags if attribute is None or attribute in declaration.attributes)


def typelib_uuid(declaration):
    return "{" + Checker.value(declaration, "uuid").upper() + "}"


def typelib_text(description):
    """The type library in the module's text form (control/module/registry/type_library.h
    reads it): a line for the library, then each dispinterface with a line per
    function and one per parameter, then the coclass with its interfaces."""
    library = Parser(description, Path(description).read_text(encoding="utf-8")).parse()
    value = lambda name: Checker.value(library, name)
    lines = [f"# The type library {library.name}, generated by {GENERATOR} from {Path(description).name}.\n",
             typelib_text_line("library", library.name, typelib_uuid(library), value("version") or "1.0",
                               value("lcid") or "0", help=value("helpfile") or "")]
    for item in library.items:
        help = Checker.value(item, "helpstring") or ""
        if item.kind == "dispinterface":
            flags = typelib_flags(item, [(None, "dispatchable"), ("hidden", "hidden")])
            lines.append(typelib_text_line("dispinterface", item.name, typelib_uuid(item), flags, help=help))
            for method in item.methods:
                lines.append(typelib_text_line("function", Checker.value(method, "id"), method.name,
                                               TYPELIB_TYPES[method.type.text],
                                               help=Checker.value(method, "helpstring")))
                lines += [typelib_text_line("param", TYPELIB_TYPES[p.type.text], p.name) for p in method.params]
        else:
            flags = typelib_flags(item, [(None, "creatable"), ("control", "control")])
            lines.append(typelib_text_line("coclass", item.name, typelib_uuid(item), flags, help=help))
            for member in item.members:
                roles = ",".join(role for role in ("default", "source") if role in member.attributes) or "member"
                lines.append(typelib_text_line("interface", roles, member.name))
    return "".join(lines)


def cpp_type_library(description):
    read_description(description)  # refuses what makes no sense before anything is written
    return (generated_note(description) +
            "// The type library in its text form, embedded in the module: GetTypeInfo reads it and\n"
            "// registration writes it out as the type library file.\n"
            '#include "control/module/registry/type_library.h"\n\n'
            "std::string_view EmbeddedTypeLibraryText() {\n"
            '  return R"typelib(' + typelib_text(description) + ')typelib";\n}\n')


# ---- the web element ----

def js_string(text):
    """A single-quoted JavaScript or TypeScript string (description strings hold no
    backslash)."""
    return "'" + text.replace("'", "\\'") + "'"


def js_method(method):
    fields = [f"name: '{method.name}'"]
    if RESULT_TYPES[method.result]["js_empty"] is not None:
        fields.append(f"empty: {RESULT_TYPES[method.result]['js_empty']}")
    pictures = [i for i, p in enumerate(method.params) if p.role == "picture"]
    if pictures:
        fields.append(f"pictures: [{', '.join(map(str, pictures))}]")
    for i, param in enumerate(method.params):
        if param.role == "savefile":
            fields.append(f"savefile: {i}")
        if param.role == "dialog":
            values = ", ".join(js_string(value) for value in param.dialog_values)
            fields.append(f"dialog: {{ kind: '{param.dialog}', parameter: {i}, values: [{values}] }}")
    if method.dialog:
        fields.append(f"dialog: {{ kind: '{method.dialog}' }}")
    if method.lengthy:
        fields.append("lengthy: true")
    return "  { " + ", ".join(fields) + " },"


def js_module(interface, description):
    return (generated_note(description) +
            "// The control's interface as the element needs it. Each method has its name and, where\n"
            "// they apply: `empty`, its result before the control exists (else undefined); `pictures`,\n"
            "// the arguments naming pictures to fetch before the call; `savefile`, the argument naming\n"
            "// the bitmap file it writes; `dialog`, the dialog it opens: always, or when argument\n"
            "// `parameter` is one of `values` in any case (null and undefined stand for ''); `lengthy`,\n"
            "// true when it may pass over the whole picture.\n"
            "export const METHODS = [\n" + "\n".join(js_method(m) for m in interface.methods) + "\n];\n\n"
            "// The events; the argument each carries is the event's detail.\n"
            "export const EVENTS = [" + ", ".join(f"'{e.name}'" for e in interface.events) + "];\n")


def range_text(param):
    low, high, outside = param.range
    return f"{low} to {high}, {OUTSIDE_RANGE[outside]}"


def parameter_note(param):
    """What a parameter's documentation says: its help and its range."""
    parts = [param.help] if param.help else []
    if param.range:
        parts.append(f"({range_text(param)})")
    return " ".join(parts)


def ts_doc(text, indent, params=()):
    notes = [f"@param {p.name} {parameter_note(p)}" for p in params if parameter_note(p)]
    if not notes:
        return f"{indent}/** {text}. */\n"
    return "".join(f"{indent}{line}\n" for line in ["/**", f" * {text}.", *(f" * {note}" for note in notes), " */"])


def ts_parameters(params, generic=None):
    return ", ".join(f"{p.name}: {generic if p.role == 'dialog' and generic else PARAMETER_TYPES[p.type]['ts']}"
                     for p in params)


def dialog_parameter(method):
    return next((p for p in method.params if p.role == "dialog"), None)


def always_promise(method):
    return method.dialog is not None or any(p.role == "picture" for p in method.params)


def ts_method(method, indent):
    result = RESULT_TYPES[method.result]
    dialog = dialog_parameter(method)
    if dialog is not None:
        values = " | ".join(js_string(value) for value in dialog.dialog_values)
        signature = (f"{method.name}<A extends string>({ts_parameters(method.params, 'A')}): "
                     f"DialogCall<A, {values}, {result['ts']}, {result['resolved']}>;")
    elif always_promise(method):
        signature = f"{method.name}({ts_parameters(method.params)}): Promise<{result['resolved']}>;"
    else:
        signature = f"{method.name}({ts_parameters(method.params)}): {result['ts']};"
    return ts_doc(method.help, indent, method.params) + indent + signature


def ts_event(event, indent):
    detail = PARAMETER_TYPES[event.params[0].type]["ts"]
    return ts_doc(event.help, indent) + f"{indent}{event.name}: CustomEvent<{detail}>;"


def ts_sink_method(event, indent):
    return ts_doc(event.help, indent, event.params) + f"{indent}{event.name}?({ts_parameters(event.params)}): void;"


def typescript(interface, description, template):
    """The template with each line `// @NAME@` replaced by what it names, indented as the
    marker is."""
    for event in interface.events:
        if len(event.params) != 1:
            raise DescriptionError(description, event.line, f"{event.name}: a page's event carries one argument")
    fillers = {
        "METHODS": lambda indent: "\n".join(ts_method(m, indent) for m in interface.methods),
        "EVENTS": lambda indent: "\n".join(ts_event(e, indent) for e in interface.events),
        "SINK": lambda indent: "\n".join(ts_sink_method(e, indent) for e in interface.events),
    }
    lines = [generated_note(description, template).rstrip("\n")]
    filled = set()
    for number, line in enumerate(Path(template).read_text(encoding="utf-8").splitlines(), 1):
        marker = re.fullmatch(r"(\s*)// @([A-Z]+)@", line)
        if marker is None:
            lines.append(line)
            continue
        indent, name = marker.groups()
        if name not in fillers or name in filled:
            raise DescriptionError(template, number, f"unknown or repeated marker @{name}@")
        filled.add(name)
        lines.append(fillers[name](indent))
    missing = [name for name in fillers if name not in filled]
    if missing:
        raise DescriptionError(template, len(lines), f"no line // @{missing[0]}@ for the generated part")
    return "\n".join(lines) + "\n"


# ---- the reference page ----

def template_part(text, opening):
    """The text between `opening`'s brace and the closing brace at the start of a line."""
    match = re.search(rf"^{re.escape(opening)}[^{{]*\{{\n(.*?)^\}}", text, re.M | re.S)
    return match.group(1) if match else ""


def comment_paragraphs(comment):
    """The paragraphs of a /** comment */'s text, each on one line."""
    lines = [line.strip().lstrip("*").strip() for line in comment.splitlines()]
    return [" ".join(paragraph.split()) for paragraph in "\n".join(lines).split("\n\n") if paragraph.strip()]


def documented_declarations(text):
    """(documentation, declaration) of each declaration after a /** comment */: the
    declaration runs to the first ';' outside brackets."""
    found = []
    for comment in re.finditer(r"/\*\*(.*?)\*/", text, re.S):
        doc = " ".join(comment_paragraphs(comment.group(1)))
        depth, at = 0, comment.end()
        while at < len(text) and not (text[at] == ";" and depth == 0):
            if text.startswith("=>", at):
                at += 1
            elif text[at] in "{<(":
                depth += 1
            elif text[at] in "}>)":
                depth -= 1
            at += 1
        declaration = " ".join(text[comment.end():at].split())
        # A declaration written over several lines, on one.
        found.append((doc, re.sub(r",? \)", ")", declaration.replace("( ", "("))))
    return found


def class_paragraphs(text, name):
    """The paragraphs of the /** comment */ before the declaration of class `name`."""
    doc = re.search(rf"/\*\*((?:(?!\*/).)*)\*/\s*export declare class {name} ", text, re.S)
    return comment_paragraphs(doc.group(1)) if doc else []


def md_cell(text):
    return text.replace("|", "\\|")


def md_code(text):
    return f"`{text}`"


def reference_returns(method):
    result = RESULT_TYPES[method.result]
    if always_promise(method):
        return f"Promise<{result['resolved']}>"
    if dialog_parameter(method):
        return f"{result['ts']} | Promise<{result['resolved']}>"
    return result["ts"]


def reference_signature(method):
    return f"{method.name}({ts_parameters(method.params)}): {reference_returns(method)}"


def reference_result(method):
    """When the call returns a Promise and what the call gives."""
    result = RESULT_TYPES[method.result]
    gives = {"void": "nothing", "BSTR": "a string", "BOOL": "a boolean"}[method.result]
    resolves = "resolves" if method.result == "void" else f"resolves with {gives}"
    dialog = dialog_parameter(method)
    if any(p.role == "picture" for p in method.params):
        return (f"a Promise, always: the pictures are fetched and decoded first, then the call runs; it {resolves}, "
                f"or rejects with an `ImageEditLoadError` when a picture could not be fetched or decoded.")
    if method.dialog:
        return f"a Promise, always: it {resolves} once the person closes the dialog."
    empty = f"; before the control exists, {result['js_empty']}" if result["js_empty"] else ""
    if dialog is not None:
        values = " or ".join("an empty string (or null)" if not value else f"{md_code(value)} (in any case)"
                             for value in dialog.dialog_values)
        return (f"with {md_code(dialog.name)} {values}, a Promise that {resolves} once the person closes the "
                f"dialog; otherwise {gives}, at once{empty}.")
    if method.lengthy:
        return ("nothing, at once; the call itself runs at the page's next frame, with the wait cursor shown and "
                "`busy` true until then, or earlier when another call or the person's input comes first.")
    return f"{gives}, at once{empty}."


def reference_parameters(params, heading="Argument"):
    if not params:
        return ["No arguments."]
    rows = [f"| {heading} | Type | Range | Meaning |", "|---|---|---|---|"]
    for p in params:
        rows.append(f"| {md_code(p.name)} | {md_code(md_cell(PARAMETER_TYPES[p.type]['ts']))} | "
                    f"{range_text(p) if p.range else ''} | {md_cell(p.help or '')} |")
    return rows


def reference(interface, description, template):
    """The element's reference for people: its own members and events as the
    declaration template documents them, then every method and event of the
    description."""
    text = Path(template).read_text(encoding="utf-8")
    members = documented_declarations(template_part(text, "export declare class ImageEditControl "))
    load_error = documented_declarations(template_part(text, "export declare class ImageEditLoadError "))
    element_events = documented_declarations(template_part(text, "export interface ImageEditControlEventMap"))
    names = [Path(description).name, Path(template).name]
    lines = [
        "# `<image-edit-control>` reference",
        "",
        f"<!-- Generated by {GENERATOR} from {names[0]} and {names[1]}: edit those instead. -->",
        "",
        "Every method of the element, with its arguments, their types and ranges, and what it gives back; "
        "then its events. The element and its types come from the package's module, "
        "`image-edit-control.js` (see the README).",
        "",
    ]
    for paragraph in class_paragraphs(text, "ImageEditControl"):
        lines += [paragraph, ""]
    lines += ["## The element's own members", "", "| Member | What it is |", "|---|---|"]
    lines += [f"| {md_code(md_cell(declaration))} | {md_cell(doc)} |" for doc, declaration in members]
    if load_error:
        lines += ["", "## ImageEditLoadError", "", *class_paragraphs(text, "ImageEditLoadError"), "",
                  "| Member | What it is |", "|---|---|"]
        lines += [f"| {md_code(md_cell(declaration))} | {md_cell(doc)} |" for doc, declaration in load_error]
    lines += ["", "## Methods", "", "| Method | Returns | What it does |", "|---|---|---|"]
    for m in interface.methods:
        lines.append(f"| [{m.name}](#{m.name.lower()}) | {md_code(md_cell(reference_returns(m)))} | {md_cell(m.help)} |")
    for m in interface.methods:
        lines += ["", f"### {m.name}", "", md_code(reference_signature(m)), "", f"{m.help}.", ""]
        lines += reference_parameters(m.params)
        lines += ["", f"Returns {reference_result(m)}"]
    lines += ["", "## Events", "",
              "The control's events reach the page as `CustomEvent`s whose `detail` is the event's argument, "
              "and a sink connected with `connectSink` as calls of its method of the event's name.", ""]
    for event in interface.events:
        lines += [f"### {event.name}", "", f"{event.help}.", ""]
        lines += reference_parameters(event.params, "Detail")
        lines.append("")
    lines += ["### The element's own events", "", "| Event | What it is |", "|---|---|"]
    lines += [f"| {md_code(md_cell(declaration))} | {md_cell(doc)} |" for doc, declaration in element_events]
    return "\n".join(lines) + "\n"


# ---- command line ----

def generate(mode, description, template=None):
    """The files of that mode, by name."""
    if mode == "typelib":
        return {"type_library_text.cpp": cpp_type_library(description)}
    interface = read_description(description)
    if mode == "reference":
        return {"REFERENCE.md": reference(interface, description, template)}
    if mode == "cpp":
        return {
            "control_methods.inc": cpp_declarations(interface, description),
            "control_methods.cpp": cpp_forwarding(interface, description),
            "dispatch_methods.cpp": cpp_dispatch_table(interface, description),
            "control_events.h": cpp_events(interface, description),
            "module_identifiers.cpp": cpp_module_identifiers(interface, description),
        }
    return {
        "image-edit-interface.js": js_module(interface, description),
        "image-edit-control.d.ts": typescript(interface, description, template),
    }


def main(argv):
    if not ((len(argv) == 3 and argv[0] in ("cpp", "typelib")) or
            (len(argv) == 4 and argv[0] in ("web", "reference"))):
        print("usage: generate_interface.py cpp DESCRIPTION OUTPUT_DIR\n"
              "       generate_interface.py typelib DESCRIPTION OUTPUT_DIR\n"
              "       generate_interface.py web DESCRIPTION DTS_TEMPLATE OUTPUT_DIR\n"
              "       generate_interface.py reference DESCRIPTION DTS_TEMPLATE OUTPUT_DIR", file=sys.stderr)
        return 2
    try:
        files = generate(argv[0], argv[1], argv[2] if len(argv) == 4 else None)
        folder = Path(argv[-1])
        folder.mkdir(parents=True, exist_ok=True)
        for name, text in files.items():
            (folder / name).write_text(text, encoding="utf-8")
    except (DescriptionError, OSError) as error:
        print(f"{GENERATOR}: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
