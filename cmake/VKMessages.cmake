# The constants file of the message catalogue as a text inside the library: its words are there when no catalogue is, and
# a new installation's catalogue is made from it.
set(VK_MESSAGES_DIR ${CMAKE_SOURCE_DIR}/database/messages)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${VK_MESSAGES_DIR}/VKMessageConstants.h)
file(READ ${VK_MESSAGES_DIR}/VKMessageConstants.h VK_MESSAGE_CONSTANTS)
configure_file(${VK_MESSAGES_DIR}/VKShippedMessages.cpp.in ${CMAKE_BINARY_DIR}/messages/VKShippedMessageConstants.cpp
               @ONLY)
target_sources(vk_database PRIVATE ${CMAKE_BINARY_DIR}/messages/VKShippedMessageConstants.cpp)
