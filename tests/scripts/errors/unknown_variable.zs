# A misspelt variable: the closest name in scope is offered.
title = new 工具.文本类
title.文本 = "报告"
print titel.取长度()
