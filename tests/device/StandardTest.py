"""Each source includes the standard headers of what it uses: other headers may include them on a host only."""

import re
import unittest

import bp
import modulerules as rules
import tree

# Names of the standard library, by the headers that have them; any one of several will do.
NAMES = {
    "algorithm": """all_of any_of binary_search clamp copy copy_if copy_n count count_if equal fill fill_n find
        find_first_of find_if for_each lexicographical_compare lower_bound max_element min_element mismatch none_of
        remove_copy_if remove_if replace reverse search shuffle sort stable_sort transform unique upper_bound""",
    "algorithm string_view string": "max min",
    "array": "array",
    "atomic": "atomic atomic_bool atomic_int",
    "charconv": "from_chars to_chars",
    "condition_variable": "condition_variable cv_status",
    "cmath": "floor",
    "csignal": "sig_atomic_t signal",
    "cstdio algorithm": "remove",
    "cstddef": "nullptr_t ptrdiff_t",
    "cstdlib": "abort exit strtol strtoll strtoul",
    "cstring": "memchr memcmp memcpy memmove memset strchr strcmp strerror strlen",
    "deque": "deque",
    "exception": "current_exception exception_ptr rethrow_exception",
    "exception stdexcept new": "exception",
    "filesystem": "filesystem",
    "fstream": "ifstream ofstream",
    "functional": "function hash",
    "functional map set": "less",
    "future": "future future_status promise",
    "initializer_list string string_view vector": "initializer_list",
    "iomanip": "setw setfill",
    "ios iostream istream ostream sstream": "hex",
    "iostream": "cin cout cerr",
    "iterator": "back_inserter distance istreambuf_iterator make_move_iterator make_reverse_iterator next prev",
    "iterator array deque map set string string_view vector": "begin end size",
    "limits": "numeric_limits",
    "list": "list",
    "map": "map multimap",
    "memory": "make_shared make_unique shared_ptr unique_ptr weak_ptr",
    "mutex": "call_once lock_guard mutex once_flag recursive_mutex unique_lock",
    "new": "bad_alloc nothrow",
    "numeric": "accumulate iota",
    "random": "mt19937",
    "optional": "nullopt optional",
    "ostream iostream sstream iosfwd": "ostream",
    "istream iostream sstream iosfwd": "istream",
    "set": "set multiset",
    "shared_mutex": "shared_lock shared_mutex",
    "sstream": "istringstream ostringstream stringstream",
    "stdexcept": "invalid_argument length_error logic_error out_of_range runtime_error",
    "string": "string to_string stod stoi stoul getline",
    "string string_view": "string_literals",
    "string_view": "string_view",
    "system_error": "error_code errc generic_category system_error",
    "thread": "thread this_thread",
    "tuple": "make_tuple tie tuple",
    "type_traits": """conditional_t decay_t enable_if_t invoke_result_t is_arithmetic_v is_enum_v is_integral_v
        is_nothrow_move_assignable_v is_same_v remove_reference_t underlying_type_t void_t""",
    "unordered_map": "unordered_map",
    "unordered_set": "unordered_set",
    "tuple utility array": "tuple_element_t",
    "utility": "as_const declval exchange forward index_sequence make_index_sequence make_pair move pair swap",
    "utility tuple array": "get",
    "variant": "get_if holds_alternative monostate variant visit",
    "vector": "vector",
}
# Names that several headers have; any of these headers will do.
ALSO = {"get": "variant", "swap": "algorithm", "pair": "map", "hash": "string_view"}
HEADERS = {name: set(headers.split()) | set(ALSO.get(name, "").split())
           for headers, names in NAMES.items() for name in names.split()}


def lacking(file):
    """The names that a file uses although no include of it, or of our headers in it, declares them."""
    files = {file, *rules.included(file)}
    there = {header.strip('<>"') for each in files for header in tree.includes(each)}
    used = set(re.findall(r"\bstd::(\w+)", tree.code(file)))
    return {name for name in used if name in HEADERS and not HEADERS[name] & there}


class Standard(unittest.TestCase):
    def test_sources_name_the_headers_of_what_they_use(self):
        modules = bp.modules()
        sources = {source for name in rules.with_sources(modules) for source in rules.sources_of(modules, name)}
        files = sources.union(*(rules.included(source) for source in sources))
        self.assertGreater(len(files), 120)
        self.assertEqual({file: names for file in sorted(files) if (names := lacking(file))}, {})

    def test_table_knows_what_is_used(self):
        """The table has every name that a source uses."""
        modules = bp.modules()
        used = {name for module in rules.with_sources(modules) for source in rules.sources_of(modules, module)
                for file in (source, *rules.included(source))
                for name in re.findall(r"\bstd::(\w+)", tree.code(file))}
        self.assertGreater(len(used & set(HEADERS)), 40)
        self.assertEqual(used - set(HEADERS) - {"chrono", "endl", "ios", "size_t"}, set())


if __name__ == "__main__":
    tree.main()
