s = new 工具.文本类
print s.取长度（）
