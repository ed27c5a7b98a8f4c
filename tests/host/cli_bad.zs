c = new 测试.计数器
c.没有这个方法()
print c.值
