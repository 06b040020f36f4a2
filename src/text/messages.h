/*
 * messages.h - what the conversions print when they fail. The texts are GB2312 bytes, as the
 * terminals of these recorders show them.
 */
#pragma once

namespace nvrhal
{

constexpr char kTextSource[] = "char_swap.c";

// 错误字符串
constexpr char kBadString[] = "GetGB2312ToUnicodeLength:\xB4\xED\xCE\xF3\xD7\xD6\xB7\xFB\xB4\xAE";

// 输出空间不足
constexpr char kNoRoom[] = "\xCA\xE4\xB3\xF6\xBF\xD5\xBC\xE4\xB2\xBB\xD7\xE3";

// 输入字符串中存在转换表中没有的汉字，转换失败!
constexpr char kNotInTable[] = "\xCA\xE4\xC8\xEB\xD7\xD6\xB7\xFB\xB4\xAE\xD6\xD0\xB4\xE6\xD4\xDA\xD7\xAA"
                               "\xBB\xBB\xB1\xED\xD6\xD0\xC3\xBB\xD3\xD0\xB5\xC4\xBA\xBA\xD7\xD6\xA3\xAC"
                               "\xD7\xAA\xBB\xBB\xCA\xA7\xB0\xDC!";

// 字符串有错!
constexpr char kBrokenString[] = "\xD7\xD6\xB7\xFB\xB4\xAE\xD3\xD0\xB4\xED!";

} // namespace nvrhal
