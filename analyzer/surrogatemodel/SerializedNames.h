#pragma once

/**
 * Names and texts of the XML of the settings, as the project documents of users contain them.
 * Compile-time constants: a serializer made during static initialisation can use them.
 */
namespace SerializedNames {

inline constexpr char manager[] = "SurrogateModel";
inline constexpr char type[] = "Type";
inline constexpr char kriging[] = "Kriging";
inline constexpr char responseModel[] = "ResponseModel";
inline constexpr char variable[] = "Variable";
inline constexpr char name[] = "Name";

inline constexpr char userDistributions[] = "SurrogateModelUserDefinedVariableDistribution";
inline constexpr char distribution[] = "Distribution";
inline constexpr char mode[] = "Mode";
inline constexpr char autoMode[] = "Auto";
inline constexpr char userDefinedMode[] = "UserDefined";

} // namespace SerializedNames
