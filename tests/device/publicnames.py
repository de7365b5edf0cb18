"""The names that headers offer, class by class, as the compiler sees them."""

import json
import subprocess

CLASSES = {"CXXRecordDecl", "ClassTemplateSpecializationDecl", "ClassTemplatePartialSpecializationDecl"}
NO_NAMES = {"CXXConstructorDecl", "CXXDestructorDecl", "AccessSpecDecl", "FriendDecl", "StaticAssertDecl"}


def parsed(text, folders, namespaces):
    """The declarations of some namespaces and classes, as the compiler's dump has them."""
    for name in namespaces:
        said = subprocess.run(
            ["clang++", "-std=gnu++17", "-fsyntax-only", "-x", "c++", "-", *folders,
             "-Xclang", "-ast-dump=json", "-Xclang", f"-ast-dump-filter={name}"],
            input=text, stdout=subprocess.PIPE, text=True, check=True).stdout
        decoder, at = json.JSONDecoder(), said.find("{")
        while at >= 0:
            declaration, at = decoder.raw_decode(said, at)
            yield name, declaration
            at = said.find("{", at)


class PublicNames:
    """The names of a class, except those for friends, and of a namespace, by its qualified name."""

    def __init__(self, text, folders, namespaces):
        self.offered = {}
        for name, declaration in parsed(text, folders, namespaces):
            scope, _, last = name.rpartition("::")
            if declaration.get("name") == last:
                self.walk(declaration, scope)

    def add(self, scope, name):
        self.offered.setdefault(scope, set()).add(name)

    def walk(self, declaration, scope):
        kind, name = declaration["kind"], declaration.get("name", "")
        inner = declaration.get("inner", [])
        inside = f"{scope}::{name}" if scope else name
        if kind == "NamespaceDecl":
            for each in inner:
                self.walk(each, inside)
        elif kind == "ClassTemplateDecl":
            for each in (each for each in inner if each["kind"] in CLASSES and "tagUsed" in each):
                self.walk(each, scope)
        elif kind in CLASSES:
            if declaration.get("completeDefinition"):
                self.add(scope, name)
                self.members(declaration, inside)
        elif kind == "EnumDecl":
            self.add(scope, name)
            for each in (each for each in inner if each["kind"] == "EnumConstantDecl"):
                self.add(inside, each["name"])
        elif kind.endswith("Decl") and kind not in NO_NAMES and name:
            # A definition outside of its class is listed with its class.
            if "parentDeclContextId" not in declaration:
                self.add(scope, name)

    def members(self, declaration, scope):
        access = "private" if declaration["tagUsed"] == "class" else "public"
        for each in declaration.get("inner", []):
            kind = each["kind"]
            if kind == "AccessSpecDecl":
                access = each["access"]
            elif access == "private" or each.get("isImplicit") or kind in NO_NAMES:
                continue
            elif kind in CLASSES or kind == "ClassTemplateDecl":
                self.walk(each, scope)
            elif kind == "CXXConversionDecl":
                self.add(scope, "conversion")
            elif kind == "EnumDecl":
                self.add(scope, each["name"])
                for value in (value for value in each["inner"] if value["kind"] == "EnumConstantDecl"):
                    self.add(scope, value["name"])
            elif "name" in each and kind.endswith("Decl") and each["name"].split("<")[0] != scope.split("::")[-1]:
                # A constructor that is a template has the name of its class.
                self.add(scope, "conversion" if each["name"].startswith("operator ") else each["name"])
