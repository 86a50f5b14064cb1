#pragma once

#include <mirel_property/Export.h>

#include <exception>
#include <memory>
#include <string>

/** Observable values that a validator guards, and what they throw. */
namespace veska {

/**
 * Base of every exception that crosses a library border: one message, in UTF-8, for the user.
 * Copying shares the text, so a copy cannot fail while another exception is on its way.
 */
class MIREL_PROPERTY_EXPORT ExceptionBase : public std::exception
{
public:
    /** @param message answered by what(). */
    explicit ExceptionBase(std::string message);
    ~ExceptionBase() override;

    ExceptionBase(const ExceptionBase&) noexcept;            ///< shares the text
    ExceptionBase& operator=(const ExceptionBase&) noexcept; ///< shares the text

    /** The message; valid as long as this exception or a copy of it lives. */
    const char* what() const noexcept override;

private:
    std::shared_ptr<const std::string> message;
};

} // namespace veska
