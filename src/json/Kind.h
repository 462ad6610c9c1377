#pragma once

/// JSON documents: values, reader and writer. The classes have a namespace because the toolkit's core library exports
/// classes of the same names, which global ones would replace at run time.
namespace json {

/// What a value is.
enum class Kind { Null = 0, Boolean = 1, Number = 2, String = 3, Array = 4, Object = 5 };

} // namespace json
