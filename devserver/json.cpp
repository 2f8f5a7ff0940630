// Boost.JSON is compiled here, once, instead of linking its library.
#include <boost/json/src.hpp>
