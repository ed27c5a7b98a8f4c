# A refused argument: the caret is under it.
s = new 工具.文本类
s.插入(0, 1)
